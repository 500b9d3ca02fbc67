// SPDX-License-Identifier: GPL-3.0-or-later
#include "TopRowAnchor.h"

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <QScrollBar>

#include <memory>

namespace TopRowAnchor {

void install(QAbstractItemView *view)
{
    QAbstractItemModel *model = view->model();
    if (!model)
        return;
    struct Anchor
    {
        QPersistentModelIndex row;
        int offset = 0; // how far the row is scrolled off the top, in pixels
    };
    const auto anchor = std::make_shared<Anchor>();
    // The view is the connections' context: they go with it, so it is always there.
    QAbstractItemView *watched = view;
    const auto take = [watched, anchor](const QModelIndex &, int first, int) {
        const QModelIndex top = watched->indexAt(QPoint(1, 1));
        // Only rows coming or going above the top one move what is shown.
        *anchor = top.isValid() && first <= top.row() && watched->verticalScrollBar()->value() > 0
                      ? Anchor{top, watched->visualRect(top).top()}
                      : Anchor{};
    };
    const auto restore = [watched, anchor] {
        if (!anchor->row.isValid())
            return;
        const QModelIndex row = anchor->row;
        const int offset = anchor->offset;
        *anchor = {};
        watched->scrollTo(row, QAbstractItemView::PositionAtTop);
        if (watched->verticalScrollMode() == QAbstractItemView::ScrollPerPixel)
            watched->verticalScrollBar()->setValue(watched->verticalScrollBar()->value() - offset);
    };
    QObject::connect(model, &QAbstractItemModel::rowsAboutToBeInserted, view, take);
    QObject::connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, view, take);
    QObject::connect(model, &QAbstractItemModel::rowsInserted, view, restore);
    QObject::connect(model, &QAbstractItemModel::rowsRemoved, view, restore);
}

} // namespace TopRowAnchor
