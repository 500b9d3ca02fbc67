// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchStore.h"

#include <QEventLoop>

using namespace Qt::StringLiterals;

BenchStore &BenchStore::instance()
{
    static BenchStore store;
    return store;
}

BenchStore::BenchStore()
    : m_persistence(BenchFigures::dataDirectory() + u"/store"_s)
    , m_store(m_activation, m_persistence)
{
    const FolderSource source{QUuid::createUuid(), BenchFigures::libraryRootPath(), u"library-100k"_s};
    m_store.setSourcesForTesting({source});
    m_store.setSidebarSelection(SidebarItem(source));
    refresh();
}

void BenchStore::refresh()
{
    QEventLoop loop;
    const auto connection = QObject::connect(&m_store, &AppState::isIndexingChanged, &loop, [&] {
        if (!m_store.isIndexing())
            loop.quit();
    });
    m_store.refreshFileSystem();
    loop.exec();
    QObject::disconnect(connection);
}
