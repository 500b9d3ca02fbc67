// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/FontQueryJson.h"

#include <QJsonArray>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace FontQueryJson {

namespace {

// Stored by name: a number would change meaning with any value added before it. Files
// written before names were used hold numbers, which still read.
template <typename Enum, size_t N>
using NameTable = std::array<std::pair<Enum, QLatin1StringView>, N>;

constexpr NameTable<FaceRecord::Classification, 8> kClassifications{{
    {FaceRecord::Classification::Unknown, "unknown"_L1},
    {FaceRecord::Classification::Serif, "serif"_L1},
    {FaceRecord::Classification::SansSerif, "sansSerif"_L1},
    {FaceRecord::Classification::SlabSerif, "slabSerif"_L1},
    {FaceRecord::Classification::Script, "script"_L1},
    {FaceRecord::Classification::Display, "display"_L1},
    {FaceRecord::Classification::Monospace, "monospace"_L1},
    {FaceRecord::Classification::Symbol, "symbol"_L1},
}};

constexpr NameTable<FaceRecord::Outline, 5> kOutlines{{
    {FaceRecord::Outline::TrueType, "trueType"_L1},
    {FaceRecord::Outline::Cff, "cff"_L1},
    {FaceRecord::Outline::Cff2, "cff2"_L1},
    {FaceRecord::Outline::BitmapOnly, "bitmapOnly"_L1},
    {FaceRecord::Outline::Other, "other"_L1},
}};

constexpr NameTable<LicenseStatus, 8> kLicenceStatuses{{
    {LicenseStatus::Licensed, "licensed"_L1},
    {LicenseStatus::LicensedNonCommercial, "nonCommercial"_L1},
    {LicenseStatus::Unlicensed, "unlicensed"_L1},
    {LicenseStatus::PartiallyLicensed, "partiallyLicensed"_L1},
    {LicenseStatus::PublicDomain, "publicDomain"_L1},
    {LicenseStatus::OpenSource, "openSource"_L1},
    {LicenseStatus::Trial, "trial"_L1},
    {LicenseStatus::None, "none"_L1},
}};

template <typename Enum, size_t N>
QJsonArray names(const QList<Enum> &values, const NameTable<Enum, N> &table)
{
    QJsonArray array;
    for (const Enum value : values) {
        for (const auto &[known, name] : table) {
            if (known == value)
                array.append(QString(name));
        }
    }
    return array;
}

template <typename Enum, size_t N>
QList<Enum> enums(const QJsonValue &value, const NameTable<Enum, N> &table)
{
    QList<Enum> list;
    for (const QJsonValue &item : value.toArray()) {
        if (item.isDouble()) { // an older file's number
            const int number = item.toInt(-1);
            if (number >= 0 && size_t(number) < N)
                list.append(Enum(number));
            continue;
        }
        for (const auto &[known, name] : table) {
            if (item.toString() == name)
                list.append(known);
        }
    }
    return list;
}

QStringList strings(const QJsonValue &value)
{
    QStringList list;
    for (const QJsonValue &item : value.toArray())
        list.append(item.toString());
    return list;
}

std::optional<bool> flag(const QJsonObject &json, QLatin1StringView key)
{
    const QJsonValue value = json.value(key);
    return value.isBool() ? std::optional<bool>(value.toBool()) : std::nullopt;
}

} // namespace

QJsonObject toJson(const FontQuery &q)
{
    QJsonObject json;
    if (!q.text.isEmpty())
        json.insert("text"_L1, q.text);
    if (!q.requiredCharacters.isEmpty())
        json.insert("characters"_L1, q.requiredCharacters);
    if (!q.languages.isEmpty())
        json.insert("languages"_L1, QJsonArray::fromStringList(q.languages));
    if (!q.scripts.isEmpty())
        json.insert("scripts"_L1, QJsonArray::fromStringList(q.scripts));
    if (!q.classifications.isEmpty())
        json.insert("classifications"_L1, names(q.classifications, kClassifications));
    if (q.minWeight != 0 || q.maxWeight != 1000)
        json.insert("weight"_L1, QJsonArray{q.minWeight, q.maxWeight});
    if (q.minWidth != 1 || q.maxWidth != 9)
        json.insert("width"_L1, QJsonArray{q.minWidth, q.maxWidth});
    for (const auto &[key, value] : {std::pair{"italic"_L1, q.italic}, std::pair{"monospaced"_L1, q.monospaced},
                                     std::pair{"variable"_L1, q.variable}, std::pair{"colour"_L1, q.colour},
                                     std::pair{"active"_L1, q.active}}) {
        if (value)
            json.insert(key, *value);
    }
    if (!q.formats.isEmpty())
        json.insert("formats"_L1, names(q.formats, kOutlines));
    if (q.duplicates)
        json.insert("duplicates"_L1, true);
    if (q.conflicts)
        json.insert("conflicts"_L1, true);
    if (!q.folders.isEmpty())
        json.insert("folders"_L1, QJsonArray::fromStringList(q.folders));
    if (!q.licenseStatuses.isEmpty())
        json.insert("licenceStatuses"_L1, names(q.licenseStatuses, kLicenceStatuses));
    if (q.collection)
        json.insert("collection"_L1, q.collection->toString(QUuid::WithoutBraces));
    return json;
}

FontQuery fromJson(const QJsonObject &json)
{
    FontQuery q;
    q.text = json.value("text"_L1).toString();
    q.requiredCharacters = json.value("characters"_L1).toString();
    q.languages = strings(json.value("languages"_L1));
    q.scripts = strings(json.value("scripts"_L1));
    q.classifications = enums(json.value("classifications"_L1), kClassifications);
    if (const QJsonArray weight = json.value("weight"_L1).toArray(); weight.size() == 2) {
        q.minWeight = weight.at(0).toInt(0);
        q.maxWeight = weight.at(1).toInt(1000);
    }
    if (const QJsonArray width = json.value("width"_L1).toArray(); width.size() == 2) {
        q.minWidth = width.at(0).toInt(1);
        q.maxWidth = width.at(1).toInt(9);
    }
    q.italic = flag(json, "italic"_L1);
    q.monospaced = flag(json, "monospaced"_L1);
    q.variable = flag(json, "variable"_L1);
    q.colour = flag(json, "colour"_L1);
    q.active = flag(json, "active"_L1);
    q.formats = enums(json.value("formats"_L1), kOutlines);
    q.duplicates = json.value("duplicates"_L1).toBool();
    q.conflicts = json.value("conflicts"_L1).toBool();
    q.folders = strings(json.value("folders"_L1));
    q.licenseStatuses = enums(json.value("licenceStatuses"_L1), kLicenceStatuses);
    const QUuid collection = QUuid::fromString(json.value("collection"_L1).toString());
    if (!collection.isNull())
        q.collection = collection;
    return q;
}

namespace {

qsizetype sizeOf(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::String:
        return value.toString().size() + 2;
    case QJsonValue::Array: {
        qsizetype total = 2;
        for (const QJsonValue &item : value.toArray())
            total += sizeOf(item) + 1;
        return total;
    }
    case QJsonValue::Object:
        return size(value.toObject());
    default:
        return 8;
    }
}

} // namespace

qsizetype size(const QJsonObject &json)
{
    qsizetype total = 2;
    for (auto it = json.constBegin(); it != json.constEnd(); ++it)
        total += it.key().size() + 3 + sizeOf(it.value());
    return total;
}

} // namespace FontQueryJson
