// SPDX-License-Identifier: GPL-3.0-or-later
// Smart collections: a saved catalogue question whose answer's files are the members.
#include "AppState.h"

#include "services/FontQueryJson.h"

#include <QFutureWatcher>
#include <QPointer>
#include <QSet>

void AppState::createSmartCollection(const QString &name, const FontQuery &query)
{
    createCollection(name);
    const std::optional<FontCollection> made = selectedCollection();
    if (!made)
        return;
    QList<FontCollection> collections = m_collections;
    for (FontCollection &collection : collections) {
        if (collection.id == made->id)
            collection.smartQuery = FontQueryJson::toJson(query);
    }
    setCollections(std::move(collections));
    saveCollections();
    renewSmartCollections();
}

void AppState::setSmartQuery(const QUuid &id, const FontQuery &query)
{
    QList<FontCollection> collections = m_collections;
    const auto smart = std::find_if(collections.begin(), collections.end(),
                                    [&](const FontCollection &c) { return c.id == id && c.isSmart(); });
    if (smart == collections.end())
        return;
    smart->smartQuery = FontQueryJson::toJson(query);
    setCollections(std::move(collections));
    saveCollections();
    renewSmartCollections();
}

void AppState::renewSmartCollections()
{
    for (const FontCollection &collection : std::as_const(m_collections)) {
        if (!collection.isSmart())
            continue;
        FontQuery query = FontQueryJson::fromJson(*collection.smartQuery);
        query.collection.reset(); // a question about collections never asks about itself
        auto *watcher = new QFutureWatcher<FontQueryAnswer>(this);
        const QUuid id = collection.id;
        connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, id] {
            const FontQueryAnswer found = watcher->result();
            watcher->deleteLater();
            // The files in the answer's order (family by family), each once.
            QList<CollectionMember> members;
            QSet<QString> seen;
            for (const FontFamily &family : found.families) {
                for (const FoundFace &face : family.faces) {
                    if (!seen.contains(face.path)) {
                        seen.insert(face.path);
                        members.append(CollectionMember{face.path, false});
                    }
                }
            }
            QList<FontCollection> collections = m_collections;
            const auto smart = std::find_if(collections.begin(), collections.end(),
                                            [&](const FontCollection &c) { return c.id == id && c.isSmart(); });
            if (smart == collections.end() || smart->members == members)
                return; // gone, or nothing new
            smart->members = std::move(members);
            clearCollectionMemos();
            setCollections(std::move(collections));
            saveCollections();
        });
        watcher->setFuture(answer(std::move(query), std::make_shared<std::atomic_bool>(false)));
    }
}
