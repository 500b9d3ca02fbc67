// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CollectionRecords.h"
#include "services/FontCatalog.h"

#include <QFuture>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QUuid>

#include <functional>

class QTimer;

// Smart collections as generators, one concern of the store: each collection's question
// is asked again when what it depends on changes, and only the newest question's answer
// becomes its members (answers may come back in any order). A question too large to
// ask is kept, said once, and never run. The store owns the collections and saves them.
class SmartRenewals : public QObject
{
    Q_OBJECT

public:
    using Ask = std::function<QFuture<FontQueryAnswer>(FontQuery)>;
    using Collections = std::function<QList<FontCollection>()>;
    SmartRenewals(Ask ask, Collections collections, QObject *parent = nullptr);

    // Every smart collection's question, now.
    void renew();
    // Once this turn of the event loop is over, when any question asks about what changed.
    void renewSoon(bool (*dependsOn)(const FontQuery &));
    static bool isAskable(const FontCollection &collection);

Q_SIGNALS:
    // The files that answer the newest question of collection `id`, in the answer's order.
    void answered(const QUuid &id, const QList<CollectionMember> &members);
    // A saved question too large to ask (said once a run for each collection).
    void tooLarge(const QString &name, qsizetype size);

private:
    Ask m_ask;
    Collections m_collections;
    QTimer *m_soon;
    QHash<QUuid, quint64> m_generations; // the newest question of each
    QSet<QUuid> m_tooLargeSaid;
};
