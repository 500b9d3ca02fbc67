// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sidebar/SidebarSectionProxy.h"

#include "ui/sidebar/SidebarModel.h"

SidebarSectionProxy::SidebarSectionProxy(bool collections, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_collections(collections)
{
}

bool SidebarSectionProxy::filterAcceptsRow(int sourceRow, const QModelIndex &) const
{
    const auto *sidebar = static_cast<const SidebarModel *>(sourceModel());
    return (sidebar->kind(sourceRow) == SidebarModel::Kind::Collection) == m_collections;
}
