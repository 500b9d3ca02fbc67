// SPDX-License-Identifier: GPL-3.0-or-later
// Smart collections: a saved catalogue question whose answer's files are the members.
#include "AppState.h"

#include "services/FontQueryJson.h"

#include <QFutureWatcher>
#include <QLocale>
#include <QPointer>
#include <QSet>

namespace {

bool askable(const FontCollection &collection)
{
    return collection.isSmart() && FontQueryJson::size(*collection.smartQuery) <= FontQueryJson::kMaxSize;
}

} // namespace

bool AppState::refuseLargeQuestion(const QJsonObject &question, const QString &name)
{
    const qsizetype size = FontQueryJson::size(question);
    if (size <= FontQueryJson::kMaxSize)
        return false;
    const QLocale locale;
    setNotice(tr("The filters of \u201c%1\u201d are too long to ask (%2; at most %3): its fonts stay as they were. "
                 "Shorten the filter text, or the list of folders or characters, and save again.")
                  .arg(name, locale.formattedDataSize(size), locale.formattedDataSize(FontQueryJson::kMaxSize)));
    return true;
}

void AppState::createSmartCollection(const QString &name, const FontQuery &query)
{
    if (refuseLargeQuestion(FontQueryJson::toJson(query), name))
        return;
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
    if (smart == collections.end() || refuseLargeQuestion(FontQueryJson::toJson(query), smart->name))
        return;
    smart->smartQuery = FontQueryJson::toJson(query);
    setCollections(std::move(collections));
    saveCollections();
    renewSmartCollections();
}

void AppState::scheduleSmartRenewal(bool (*dependsOn)(const FontQuery &))
{
    const bool asked = std::any_of(m_collections.cbegin(), m_collections.cend(), [dependsOn](const FontCollection &c) {
        return askable(c) && dependsOn(FontQueryJson::fromJson(*c.smartQuery));
    });
    if (!asked)
        return;
    if (!m_smartRenewal) {
        m_smartRenewal = new QTimer(this);
        m_smartRenewal->setSingleShot(true);
        m_smartRenewal->setInterval(0); // a burst of changes in one turn of the loop costs one renewal
        connect(m_smartRenewal, &QTimer::timeout, this, &AppState::renewSmartCollections);
    }
    m_smartRenewal->start();
}

void AppState::renewSmartCollections()
{
    for (const FontCollection &collection : std::as_const(m_collections)) {
        if (!collection.isSmart())
            continue;
        if (!askable(collection)) {
            // Said once a run; the collection, its question and its members stay as saved.
            if (!m_tooLargeSaid.contains(collection.id)) {
                m_tooLargeSaid.insert(collection.id);
                refuseLargeQuestion(*collection.smartQuery, collection.name);
            }
            continue;
        }
        FontQuery query = FontQueryJson::fromJson(*collection.smartQuery);
        query.collection.reset(); // a question about collections never asks about itself
        auto *watcher = new QFutureWatcher<FontQueryAnswer>(this);
        const QUuid id = collection.id;
        // Answers may come back in any order: only the newest question's counts.
        const quint64 generation = ++m_smartGenerations[id];
        connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, id, generation] {
            const FontQueryAnswer found = watcher->result();
            watcher->deleteLater();
            if (m_smartGenerations.value(id) != generation || found.cancelled)
                return;
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
