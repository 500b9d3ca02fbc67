// SPDX-License-Identifier: GPL-3.0-or-later
#include "SmartRenewals.h"

#include "services/FontQueryJson.h"

#include <QFutureWatcher>
#include <QTimer>

SmartRenewals::SmartRenewals(Ask ask, Collections collections, QObject *parent)
    : QObject(parent)
    , m_ask(std::move(ask))
    , m_collections(std::move(collections))
    , m_soon(new QTimer(this))
{
    m_soon->setSingleShot(true);
    m_soon->setInterval(0); // a burst of changes in one turn of the loop costs one renewal
    connect(m_soon, &QTimer::timeout, this, &SmartRenewals::renew);
}

bool SmartRenewals::isAskable(const FontCollection &collection)
{
    return collection.isSmart() && FontQueryJson::size(*collection.smartQuery) <= FontQueryJson::kMaxSize;
}

void SmartRenewals::renewSoon(bool (*dependsOn)(const FontQuery &))
{
    const QList<FontCollection> collections = m_collections();
    if (std::any_of(collections.cbegin(), collections.cend(), [dependsOn](const FontCollection &c) {
            return isAskable(c) && dependsOn(FontQueryJson::fromJson(*c.smartQuery));
        }))
        m_soon->start();
}

void SmartRenewals::renew()
{
    for (const FontCollection &collection : m_collections()) {
        if (!collection.isSmart())
            continue;
        if (!isAskable(collection)) {
            if (!m_tooLargeSaid.contains(collection.id)) {
                m_tooLargeSaid.insert(collection.id);
                Q_EMIT tooLarge(collection.name, FontQueryJson::size(*collection.smartQuery));
            }
            continue;
        }
        FontQuery query = FontQueryJson::fromJson(*collection.smartQuery);
        query.collection.reset(); // a question about collections never asks about itself
        const QUuid id = collection.id;
        const quint64 generation = ++m_generations[id];
        auto *watcher = new QFutureWatcher<FontQueryAnswer>(this);
        connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, id, generation] {
            const FontQueryAnswer found = watcher->result();
            watcher->deleteLater();
            if (m_generations.value(id) != generation || found.cancelled)
                return; // a newer question was asked meanwhile
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
            Q_EMIT answered(id, members);
        });
        watcher->setFuture(m_ask(std::move(query)));
    }
}
