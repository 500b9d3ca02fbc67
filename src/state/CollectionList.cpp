// SPDX-License-Identifier: GPL-3.0-or-later
#include "CollectionList.h"

#include "services/PersistenceService.h"

#include <algorithm>

CollectionList::CollectionList(PersistenceService &persistence, const QLocale &locale, QObject *parent)
    : QObject(parent)
    , m_persistence(persistence)
    , m_collator(locale)
{
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

const FontCollection *CollectionList::find(const QUuid &id) const
{
    const auto found = std::find_if(m_collections.cbegin(), m_collections.cend(),
                                    [&id](const FontCollection &collection) { return collection.id == id; });
    return found == m_collections.cend() ? nullptr : &*found;
}

FontCollection *CollectionList::findEditable(const QUuid &id)
{
    const auto found = std::find_if(m_collections.begin(), m_collections.end(),
                                    [&id](const FontCollection &collection) { return collection.id == id; });
    return found == m_collections.end() ? nullptr : &*found;
}

void CollectionList::replace(QList<FontCollection> collections)
{
    if (m_collections == collections)
        return;
    m_collections = std::move(collections);
    Q_EMIT changed();
}

void CollectionList::save()
{
    m_persistence.saveCollections(m_collections);
}

void CollectionList::load()
{
    QList<FontCollection> loaded = m_persistence.loadCollections();
    sortCollections(loaded, m_collator);
    replace(std::move(loaded));
}

void CollectionList::sort()
{
    QList<FontCollection> sorted = m_collections;
    sortCollections(sorted, m_collator);
    replace(std::move(sorted));
}

FontCollection CollectionList::create(const QString &name, std::optional<QJsonObject> smartQuery)
{
    QString candidate = name;
    const auto taken = [this](const QString &text) {
        return std::any_of(m_collections.cbegin(), m_collections.cend(),
                           [&text](const FontCollection &collection) { return collection.name == text; });
    };
    for (int counter = 2; taken(candidate); ++counter)
        candidate = name + u' ' + QString::number(counter);
    FontCollection collection = FontCollection::create(candidate);
    collection.smartQuery = std::move(smartQuery);
    // On top until the next sort, so the user sees what they just made.
    QList<FontCollection> collections = m_collections;
    collections.prepend(collection);
    replace(std::move(collections));
    save();
    return collection;
}

void CollectionList::remove(const QUuid &id)
{
    QList<FontCollection> collections = m_collections;
    collections.removeIf([&id](const FontCollection &c) { return c.id == id; });
    replace(std::move(collections));
    // The stored icon file stays: one small leftover file, never the user's.
    save();
}

void CollectionList::rename(const QUuid &id, const QString &name)
{
    FontCollection *collection = findEditable(id);
    if (!collection || name.trimmed().isEmpty())
        return;
    if (collection->name != name) {
        collection->name = name;
        Q_EMIT changed();
    }
    sort();
    save();
}

CollectionList::Edit CollectionList::addMembers(const QUuid &id, const QList<FontNode> &nodes, QStringList *added)
{
    FontCollection *collection = findEditable(id);
    if (!collection)
        return Edit::Missing;
    if (collection->isSmart() && !nodes.isEmpty())
        return Edit::Smart;
    QStringList paths;
    for (const FontNode &node : nodes) {
        if (collection->contains(node.path()))
            continue;
        collection->members.append({node.path(), node.isDirectory()});
        paths.append(node.path());
    }
    if (added)
        *added = paths;
    if (paths.isEmpty())
        return Edit::Unchanged;
    // A drop of many files: one change, one save.
    Q_EMIT changed();
    save();
    return Edit::Done;
}

CollectionList::Edit CollectionList::removeMember(const QUuid &id, const QString &path)
{
    FontCollection *collection = findEditable(id);
    if (!collection)
        return Edit::Missing;
    if (collection->isSmart())
        return Edit::Smart;
    const bool removed = collection->members.removeIf([&path](const CollectionMember &m) { return m.path == path; }) > 0;
    if (removed)
        Q_EMIT changed();
    save();
    return removed ? Edit::Done : Edit::Unchanged;
}

void CollectionList::setIcon(const QUuid &id, const std::optional<QString> &storedPath)
{
    FontCollection *collection = findEditable(id);
    if (!collection)
        return;
    if (collection->iconPath != storedPath) {
        collection->iconPath = storedPath;
        Q_EMIT changed();
    }
    save();
}

CollectionList::Edit CollectionList::setSmartQuery(const QUuid &id, const QJsonObject &query)
{
    FontCollection *collection = findEditable(id);
    if (!collection || !collection->isSmart())
        return Edit::Missing;
    if (collection->smartQuery == query)
        return Edit::Unchanged;
    collection->smartQuery = query;
    Q_EMIT changed();
    save();
    return Edit::Done;
}

void CollectionList::setSmartMembers(const QUuid &id, const QList<CollectionMember> &members)
{
    FontCollection *collection = findEditable(id);
    if (!collection || !collection->isSmart() || collection->members == members)
        return; // gone, or nothing new
    collection->members = members;
    Q_EMIT changed();
    save();
}
