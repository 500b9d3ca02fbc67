// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QStyledItemDelegate>

// Paints one browser row: the activation button, the node's icon (a folder in its
// licence colour, or the font-file symbol), the name on one line, and a chevron for
// folders, on the background its state asks for. No widget per row.
class FontNodeDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    struct Layout
    {
        QRectF background;
        QRectF button;
        QRectF icon;
        QRectF text;
        QRectF chevron;
    };
    // Where each part of a row goes; painting, clicks and tooltips all use it.
    static Layout layout(const QRect &row, bool isFolder);
    // The same, mirrored for right-to-left reading: the button at the right, the chevron at the left.
    static Layout layout(const QRect &row, bool isFolder, Qt::LayoutDirection direction);
    static QString buttonToolTip(int activationState);

    using QStyledItemDelegate::QStyledItemDelegate;
    void setActiveColumn(bool active) { m_activeColumn = active; }

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

Q_SIGNALS:
    // The row's activation button was clicked; the row itself is left alone.
    void activationClicked(const QModelIndex &index);

private:
    bool m_activeColumn = false;
};
