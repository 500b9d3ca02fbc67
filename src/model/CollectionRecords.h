// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Expected.h"

#include <QByteArray>
#include <QCollator>
#include <QHashFunctions>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

// One entry of a collection: a font file, or a folder whose fonts all belong to it.
// Only the path is kept, so a member survives its file going missing.
struct CollectionMember
{
    QString path;
    bool isDirectory = false;

    const QString &id() const { return path; }

    void appendJson(QByteArray &out) const;
    static Expected<CollectionMember> fromJson(const QJsonValue &value);

    friend bool operator==(const CollectionMember &, const CollectionMember &) = default;
};

size_t qHash(const CollectionMember &member, size_t seed = 0) noexcept;

// A user-made, named group of fonts and folders from any source.
struct FontCollection
{
    QUuid id;
    QString name;
    QList<CollectionMember> members;
    std::optional<QString> iconPath;
    // A smart collection's question to the font catalogue, as the catalogue writes it;
    // its members are the files that answer, renewed after each refresh.
    std::optional<QJsonObject> smartQuery{};
    // Fields this version does not know (written by a newer Morvane): kept as they were
    // and written back, so a rewrite never loses them.
    QJsonObject otherFields{};

    static FontCollection create(const QString &name);
    bool isSmart() const { return smartQuery.has_value(); }

    // Exact path match on the members themselves; does not look inside folder members.
    bool contains(const QString &path) const;

    // "iconPath" and "smartQuery" are written only when present, never as null.
    void appendJson(QByteArray &out) const;
    static Expected<FontCollection> fromJson(const QJsonValue &value);

    friend bool operator==(const FontCollection &, const FontCollection &) = default;
};

size_t qHash(const FontCollection &collection, size_t seed = 0) noexcept;

// "Favorites" (any letter case) first, then by name; a stable sort, so equal names
// keep their order. The collator decides case-insensitive equality and order.
void sortCollections(QList<FontCollection> &collections, const QCollator &collator);
