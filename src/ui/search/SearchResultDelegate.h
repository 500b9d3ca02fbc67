// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QStyledItemDelegate>

// Paints one folder-search hit: the activation button, the folder in its licence
// colour, the folder's name over its font count, on a subtle rounded highlight while
// the pointer is over it.
class SearchResultDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    struct Layout
    {
        QRectF background;
        QRectF button;
        QRectF icon;
        QRectF name;
        QRectF count;
    };
    static Layout layout(const QRect &row, const QFont &font, Qt::LayoutDirection direction = Qt::LeftToRight);
    static QFont nameFont(const QFont &base);
    static QFont countFont(const QFont &base);

    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

Q_SIGNALS:
    // The row's activation button was clicked; the row itself is left alone.
    void activationClicked(const QModelIndex &index);
};
