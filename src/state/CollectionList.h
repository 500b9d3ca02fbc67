// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CollectionRecords.h"
#include "model/FontNode.h"

#include <QCollator>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <optional>

class PersistenceService;

// The user's collections, one concern of the store: their list in sidebar order, every
// edit of it, and saving it after each. What an edit means for the rest (the selection,
// a refresh for members not yet scanned, a notice) is the store's to decide. A smart
// collection's members are its question's answer: no hand edit reaches them.
class CollectionList : public QObject
{
    Q_OBJECT

public:
    CollectionList(PersistenceService &persistence, const QLocale &locale, QObject *parent = nullptr);

    const QList<FontCollection> &all() const { return m_collections; }
    const FontCollection *find(const QUuid &id) const;
    // The saved collections, in order.
    void load();

    // A free name made of `name` (a number added), on top until the next sort.
    FontCollection create(const QString &name, std::optional<QJsonObject> smartQuery = std::nullopt);
    void remove(const QUuid &id);
    // A blank name leaves a row nobody can read or find: refused.
    void rename(const QUuid &id, const QString &name);
    void sort(); // "Favorites" first, then by name

    enum class Edit { Done, Unchanged, Smart, Missing };
    // Members already there are skipped; `added` learns the paths that were not.
    Edit addMembers(const QUuid &id, const QList<FontNode> &nodes, QStringList *added = nullptr);
    Edit removeMember(const QUuid &id, const QString &path);
    void setIcon(const QUuid &id, const std::optional<QString> &storedPath);
    Edit setSmartQuery(const QUuid &id, const QJsonObject &query);
    // A smart collection's answer: saved only when it differs.
    void setSmartMembers(const QUuid &id, const QList<CollectionMember> &members);

Q_SIGNALS:
    void changed();

private:
    FontCollection *findEditable(const QUuid &id);
    void replace(QList<FontCollection> collections); // notifies when different
    void save();

    PersistenceService &m_persistence;
    QCollator m_collator; // the user's locale, case-insensitive
    QList<FontCollection> m_collections;
};
