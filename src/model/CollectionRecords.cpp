// SPDX-License-Identifier: GPL-3.0-or-later
#include "CollectionRecords.h"

#include <QJsonDocument>

#include "Json.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

void CollectionMember::appendJson(QByteArray &out) const
{
    out.append('{');
    Json::appendKey(out, "path");
    Json::appendString(out, path);
    out.append(',');
    Json::appendKey(out, "isDirectory");
    out.append(isDirectory ? "true" : "false");
    out.append('}');
}

Expected<CollectionMember> CollectionMember::fromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return Expected<CollectionMember>::failure(u"expected an object but found %1"_s.arg(Json::typeName(value)));
    const QJsonObject object = value.toObject();
    CollectionMember member;
    if (auto error = Json::readString(object, "path"_L1, member.path))
        return Expected<CollectionMember>::failure(*error);
    if (auto error = Json::readBool(object, "isDirectory"_L1, member.isDirectory))
        return Expected<CollectionMember>::failure(*error);
    return member;
}

size_t qHash(const CollectionMember &member, size_t seed) noexcept
{
    return qHashMulti(seed, member.path, member.isDirectory);
}

FontCollection FontCollection::create(const QString &name)
{
    return FontCollection{QUuid::createUuid(), name, {}, std::nullopt};
}

bool FontCollection::contains(const QString &path) const
{
    return std::any_of(members.cbegin(), members.cend(),
                       [&path](const CollectionMember &member) { return member.path == path; });
}

void FontCollection::appendJson(QByteArray &out) const
{
    out.append('{');
    Json::appendKey(out, "id");
    Json::appendString(out, Json::uuidText(id));
    out.append(',');
    Json::appendKey(out, "name");
    Json::appendString(out, name);
    out.append(',');
    Json::appendKey(out, "members");
    out.append('[');
    for (qsizetype i = 0; i < members.size(); ++i) {
        if (i > 0)
            out.append(',');
        members.at(i).appendJson(out);
    }
    out.append(']');
    if (iconPath) {
        out.append(',');
        Json::appendKey(out, "iconPath");
        Json::appendString(out, *iconPath);
    }
    if (smartQuery) {
        out.append(',');
        Json::appendKey(out, "smartQuery");
        out.append(QJsonDocument(*smartQuery).toJson(QJsonDocument::Compact));
    }
    for (auto it = otherFields.constBegin(); it != otherFields.constEnd(); ++it) {
        out.append(',');
        Json::appendString(out, it.key());
        out.append(':');
        // One value as a document of its own: an array holding it, brackets cut.
        const QByteArray array = QJsonDocument(QJsonArray{it.value()}).toJson(QJsonDocument::Compact);
        out.append(array.mid(1, array.size() - 2));
    }
    out.append('}');
}

Expected<FontCollection> FontCollection::fromJson(const QJsonValue &value)
{
    using Result = Expected<FontCollection>;
    if (!value.isObject())
        return Result::failure(u"expected an object but found %1"_s.arg(Json::typeName(value)));
    const QJsonObject object = value.toObject();
    FontCollection collection;
    if (auto error = Json::readUuid(object, "id"_L1, collection.id))
        return Result::failure(*error);
    if (auto error = Json::readString(object, "name"_L1, collection.name))
        return Result::failure(*error);
    const QJsonValue members = object.value("members"_L1);
    if (members.isUndefined())
        return Result::failure(u"key \"members\" is missing"_s);
    if (!members.isArray())
        return Result::failure(u"key \"members\" must be an array but is %1"_s.arg(Json::typeName(members)));
    const QJsonArray memberArray = members.toArray();
    collection.members.reserve(memberArray.size());
    for (qsizetype i = 0; i < memberArray.size(); ++i) {
        Expected<CollectionMember> member = CollectionMember::fromJson(memberArray.at(i));
        if (!member)
            return Result::failure(u"member %1: %2"_s.arg(i + 1).arg(member.error()));
        collection.members.append(std::move(member).value());
    }
    const QJsonValue icon = object.value("iconPath"_L1);
    if (icon.isString())
        collection.iconPath = icon.toString();
    else if (!icon.isUndefined() && !icon.isNull())
        return Result::failure(u"key \"iconPath\" must be a string or null but is %1"_s.arg(Json::typeName(icon)));
    const QJsonValue smart = object.value("smartQuery"_L1);
    if (smart.isObject())
        collection.smartQuery = smart.toObject();
    else if (!smart.isUndefined() && !smart.isNull())
        return Result::failure(u"key \"smartQuery\" must be an object or null but is %1"_s.arg(Json::typeName(smart)));
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        static const QStringList known{u"id"_s, u"name"_s, u"members"_s, u"iconPath"_s, u"smartQuery"_s};
        if (!known.contains(it.key()))
            collection.otherFields.insert(it.key(), it.value());
    }
    return collection;
}

size_t qHash(const FontCollection &collection, size_t seed) noexcept
{
    QtPrivate::QHashCombine combine;
    seed = combine(seed, collection.id);
    seed = combine(seed, collection.name);
    seed = combine(seed, collection.members.size());
    for (const CollectionMember &member : collection.members) {
        seed = combine(seed, member.path);
        seed = combine(seed, member.isDirectory);
    }
    if (collection.iconPath) {
        seed = combine(seed, 1);
        seed = combine(seed, *collection.iconPath);
    } else {
        seed = combine(seed, 0);
    }
    return seed;
}

void sortCollections(QList<FontCollection> &collections, const QCollator &collator)
{
    static const QString favorites = u"Favorites"_s;
    std::stable_sort(collections.begin(), collections.end(),
                     [&collator](const FontCollection &a, const FontCollection &b) {
                         const bool aFavorite = collator.compare(a.name, favorites) == 0;
                         const bool bFavorite = collator.compare(b.name, favorites) == 0;
                         if (aFavorite != bFavorite)
                             return aFavorite;
                         return collator.compare(a.name, b.name) < 0;
                     });
}
