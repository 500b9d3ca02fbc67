// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSortFilterProxyModel>

// One section of the sidebar model: the sources (and their placeholder), or the
// collections. Rows keep their order; nothing is sorted.
class SidebarSectionProxy : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    SidebarSectionProxy(bool collections, QObject *parent = nullptr);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    bool m_collections;
};
