// SPDX-License-Identifier: GPL-3.0-or-later
// Collections: create, rename, delete and order them, add and remove members, expand
// them into fonts, order members for display, and custom icons. Every change saves.
#include "AppState.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

FontCollection *AppState::findCollection(const QUuid &id)
{
    const auto found = std::find_if(m_collections.begin(), m_collections.end(),
                                    [&id](const FontCollection &collection) { return collection.id == id; });
    return found == m_collections.end() ? nullptr : &*found;
}

void AppState::clearCollectionMemos()
{
    m_collectionContents.forget();
    m_collectionStateCache.clear();
}

void AppState::saveCollections()
{
    m_persistenceService.saveCollections(m_collections);
}

void AppState::sortCollections()
{
    QList<FontCollection> sorted = m_collections;
    ::sortCollections(sorted, m_collator);
    setCollections(std::move(sorted));
}

QString AppState::defaultCollectionName()
{
    return tr("New Collection");
}

void AppState::createCollection(const QString &name)
{
    QString candidate = name;
    const auto taken = [this](const QString &text) {
        return std::any_of(m_collections.cbegin(), m_collections.cend(),
                           [&text](const FontCollection &collection) { return collection.name == text; });
    };
    for (int counter = 2; taken(candidate); ++counter)
        candidate = name + u' ' + QString::number(counter);
    const FontCollection collection = FontCollection::create(candidate);
    // On top until the next sort, so the user sees what they just made.
    QList<FontCollection> collections = m_collections;
    collections.prepend(collection);
    clearCollectionMemos();
    setCollections(std::move(collections));
    setSidebarSelection(SidebarItem(collection));
    saveCollections();
}

void AppState::deleteCollection(const FontCollection &collection)
{
    QList<FontCollection> collections = m_collections;
    collections.removeIf([&collection](const FontCollection &c) { return c.id == collection.id; });
    clearCollectionMemos();
    setCollections(std::move(collections));
    if (m_sidebarSelection && m_sidebarSelection->isCollection() && m_sidebarSelection->payloadId() == collection.id) {
        setSidebarSelection(m_sources.isEmpty() ? std::nullopt : std::optional<SidebarItem>(SidebarItem(m_sources.first())));
        m_navigation->showRoot();
    }
    // The stored icon file stays: one small leftover file, never the user's.
    saveCollections();
}

void AppState::renameCollection(const QUuid &id, const QString &name)
{
    FontCollection *collection = findCollection(id);
    // A blank name would leave a row nobody can read or find: the old one stays.
    if (!collection || name.trimmed().isEmpty())
        return;
    if (collection->name != name) {
        collection->name = name;
        Q_EMIT collectionsChanged();
    }
    sortCollections();
    saveCollections();
}

void AppState::addToCollection(const QUuid &id, const FontNode &node)
{
    addToCollection(id, QList<FontNode>{node});
}

void AppState::refuseSmartEdit(const FontCollection &collection)
{
    setNotice(tr("\u201c%1\u201d is a smart collection: its fonts are the ones that answer its filters. "
                 "To change them, choose Edit Filters\u2026 in its menu.")
                  .arg(collection.name));
}

void AppState::addToCollection(const QUuid &id, const QList<FontNode> &nodes)
{
    FontCollection *collection = findCollection(id);
    if (!collection)
        return;
    if (collection->isSmart() && !nodes.isEmpty()) {
        refuseSmartEdit(*collection); // the next renewal would drop them without a word
        return;
    }
    bool added = false;
    bool unknown = false;
    for (const FontNode &node : nodes) {
        if (collection->contains(node.path()))
            continue;
        collection->members.append({node.path(), node.isDirectory()});
        added = true;
        unknown |= !m_fileSystemService->exists(node.path());
    }
    if (!added)
        return;
    // A drop of many files: one update, one save, at most one scan.
    clearCollectionMemos(); // before anyone told reads them
    Q_EMIT collectionsChanged();
    if (unknown)
        refreshFileSystem(); // make the new members known
    saveCollections();
}

void AppState::removeFromCollection(const QUuid &id, const CollectionMember &member)
{
    FontCollection *collection = findCollection(id);
    if (!collection)
        return;
    if (collection->isSmart()) {
        refuseSmartEdit(*collection);
        return;
    }
    if (collection->members.removeIf([&member](const CollectionMember &m) { return m.path == member.path; }) > 0) {
        clearCollectionMemos();
        Q_EMIT collectionsChanged();
    }
    saveCollections();
}

void AppState::setCollectionIcon(const QUuid &id, const std::optional<QString> &imagePath)
{
    if (!findCollection(id))
        return;
    QString failure;
    const std::optional<QString> stored = m_persistenceService.storeCollectionIcon(id, imagePath, &failure);
    if (!failure.isEmpty())
        setNotice(tr("Couldn't use \u201c%1\u201d as the collection's icon: %2.")
                      .arg(imagePath->section(u'/', -1), failure));
    m_collectionIcons.forget();
    // Kept like any icon, but the user learns now why the row shows none.
    if (stored && m_collectionIcons.hasDecoder() && !collectionIcon(*stored))
        setNotice(tr("Couldn't use \u201c%1\u201d as the collection's icon: it is not an image Morvane can read.")
                      .arg(imagePath->section(u'/', -1)));
    clearCollectionMemos();
    FontCollection *collection = findCollection(id);
    if (collection->iconPath != stored) {
        collection->iconPath = stored;
        Q_EMIT collectionsChanged();
    }
    saveCollections();
}

QList<FontNode> AppState::allFontsInCollection(const FontCollection &collection)
{
    return m_collectionContents.fonts(collection, *m_fileSystemService);
}

QList<CollectionMember> AppState::sortedMembers(const FontCollection &collection)
{
    return m_collectionContents.sortedMembers(collection, m_collator.locale());
}

void AppState::setIconDecoder(IconDecoder decoder)
{
    m_collectionIcons.setDecoder(std::move(decoder));
}

std::optional<QImage> AppState::collectionIcon(const QString &iconPath)
{
    return m_collectionIcons.icon(iconPath);
}

void AppState::setLicenseStatus(LicenseStatus status, const QString &path)
{
    m_finderTagService.setLicenseStatus(status, path);
    if (const auto failure = m_finderTagService.takeWriteFailure()) {
        const QString name = path.section(u'/', -1, -1, QString::SectionSkipEmpty);
        setNotice(failure->unsupported
                      ? tr("This file system doesn't keep tags, so the licence status of \u201c%1\u201d can't be "
                           "kept.").arg(name)
                      : tr("Couldn't set the licence status of \u201c%1\u201d: %2.").arg(name, failure->error));
    }
    Q_EMIT licenseTagsChanged();
}
