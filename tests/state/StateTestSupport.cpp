// SPDX-License-Identifier: GPL-3.0-or-later
#include "StateTestSupport.h"

void FakeActivation::record(const QString &call)
{
    ++callCount;
    QMutexLocker lock(&m_mutex);
    while (m_held)
        m_opened.wait(&m_mutex);
    m_calls.append(call);
}

bool FakeActivation::activateFont(const QString &path)
{
    record(u'+' + path);
    return !failing.contains(path);
}

bool FakeActivation::deactivateFont(const QString &path)
{
    record(u'-' + path);
    return !failing.contains(path);
}

void FakeActivation::hold()
{
    const QMutexLocker lock(&m_mutex);
    m_held = true;
}

void FakeActivation::open()
{
    const QMutexLocker lock(&m_mutex);
    m_held = false;
    m_opened.wakeAll();
}

QStringList FakeActivation::calls() const
{
    const QMutexLocker lock(&m_mutex);
    return m_calls;
}

StoreFixture::StoreFixture()
    : library(TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/Library")))
    , store(std::make_unique<AppState>(activation, persistence))
{
}

FolderSource StoreFixture::addSource(const QString &sourcePath)
{
    FolderSource source{QUuid::createUuid(), sourcePath, sourcePath.section(u'/', -1)};
    QList<FolderSource> sources = store->sources();
    sources.append(source);
    store->setSourcesForTesting(sources);
    return source;
}

void StoreFixture::scan()
{
    auto service = std::make_shared<FileSystemService>();
    for (const FolderSource &source : store->sources()) {
        if (service->insertPreScannedRoot(source.path))
            service->deepScan(source.path);
    }
    for (const FontCollection &collection : store->collections()) {
        for (const CollectionMember &member : collection.members) {
            service->recordExistence(member.path);
            if (member.isDirectory && service->insertPreScannedRoot(member.path))
                service->deepScan(member.path);
        }
    }
    service->freeze();
    store->installLibrary(service, {});
}

PersistenceService &StoreFixture::written()
{
    persistence.waitForWrites();
    return persistence;
}

FontNode StoreFixture::folder(const QString &relative) const
{
    return FontNode::folder(path(relative));
}

FontNode StoreFixture::font(const QString &relative) const
{
    return FontNode::fontFile(path(relative));
}

QStringList nodeNames(const QList<FontNode> &nodes)
{
    QStringList names;
    for (const FontNode &node : nodes)
        names.append(node.name().toString());
    return names;
}

QStringList columnNames(const AppState &store)
{
    QStringList columns;
    for (const QList<FontNode> &column : store.cachedColumns())
        columns.append(nodeNames(column).join(u','));
    return columns;
}
