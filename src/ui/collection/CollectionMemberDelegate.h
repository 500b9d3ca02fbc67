// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/browser/FontNodeDelegate.h"

#include <QStyledItemDelegate>

// One collection member: its activation button (none when missing), a folder in its
// licence colour or the font symbol, the name, and the folder holding it in secondary
// text; a missing member is dimmed.
class CollectionMemberDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int kRowHeight = 40;
    static FontNodeDelegate::Layout layout(const QRect &row, Qt::LayoutDirection direction = Qt::LeftToRight)
    {
        return FontNodeDelegate::layout(row, false, direction);
    }

    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override { return {300, kRowHeight}; }
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

Q_SIGNALS:
    // The button of a member that is there was clicked; the row itself is left alone.
    void activationClicked(const QModelIndex &index);
};
