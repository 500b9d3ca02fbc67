// SPDX-License-Identifier: GPL-3.0-or-later
// Collections: create, rename, delete and order them, add and remove members, expand
// them into fonts, order members for display, and custom icons. Every change saves.
#include "AppState.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

void AppState::clearCollectionMemos()
{
    m_collectionContents.forget();
    m_collectionStateCache.clear();
}

void AppState::sortCollections()
{
    m_collectionList->sort();
}

QString AppState::defaultCollectionName()
{
    return tr("New Collection");
}

void AppState::createCollection(const QString &name)
{
    const FontCollection collection = m_collectionList->create(name);
    setSidebarSelection(SidebarItem(collection));
}

void AppState::deleteCollection(const FontCollection &collection)
{
    m_collectionList->remove(collection.id);
    if (m_sidebarSelection && m_sidebarSelection->isCollection() && m_sidebarSelection->payloadId() == collection.id) {
        setSidebarSelection(sources().isEmpty() ? std::nullopt : std::optional<SidebarItem>(SidebarItem(sources().first())));
        m_navigation->showRoot();
    }
}

void AppState::renameCollection(const QUuid &id, const QString &name)
{
    m_collectionList->rename(id, name);
}

void AppState::addToCollection(const QUuid &id, const FontNode &node)
{
    addToCollection(id, QList<FontNode>{node});
}

void AppState::refuseSmartEdit(const QUuid &id)
{
    const FontCollection *collection = m_collectionList->find(id);
    setNotice(tr("\u201c%1\u201d is a smart collection: its fonts are the ones that answer its filters. "
                 "To change them, choose Edit Filters\u2026 in its menu.")
                  .arg(collection ? collection->name : QString()));
}

void AppState::addToCollection(const QUuid &id, const QList<FontNode> &nodes)
{
    QStringList added;
    const CollectionList::Edit edit = m_collectionList->addMembers(id, nodes, &added);
    if (edit == CollectionList::Edit::Smart)
        refuseSmartEdit(id); // the next renewal would drop them without a word
    // Members the last scan did not see: a scan makes them known (one for a whole drop).
    if (std::any_of(added.cbegin(), added.cend(), [this](const QString &path) { return !m_fileSystemService->exists(path); }))
        refreshFileSystem();
}

void AppState::removeFromCollection(const QUuid &id, const CollectionMember &member)
{
    if (m_collectionList->removeMember(id, member.path) == CollectionList::Edit::Smart)
        refuseSmartEdit(id);
}

void AppState::setCollectionIcon(const QUuid &id, const std::optional<QString> &imagePath)
{
    if (!m_collectionList->find(id))
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
    m_collectionList->setIcon(id, stored);
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
