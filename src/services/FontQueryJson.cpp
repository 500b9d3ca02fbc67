// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/FontQueryJson.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace FontQueryJson {

namespace {

template <typename Enum>
QJsonArray numbers(const QList<Enum> &values)
{
    QJsonArray array;
    for (const Enum value : values)
        array.append(int(value));
    return array;
}

template <typename Enum>
QList<Enum> enums(const QJsonValue &value)
{
    QList<Enum> list;
    for (const QJsonValue &item : value.toArray())
        list.append(Enum(item.toInt()));
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
        json.insert("classifications"_L1, numbers(q.classifications));
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
        json.insert("formats"_L1, numbers(q.formats));
    if (q.duplicates)
        json.insert("duplicates"_L1, true);
    if (q.conflicts)
        json.insert("conflicts"_L1, true);
    if (!q.folders.isEmpty())
        json.insert("folders"_L1, QJsonArray::fromStringList(q.folders));
    if (!q.licenseStatuses.isEmpty())
        json.insert("licenceStatuses"_L1, numbers(q.licenseStatuses));
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
    q.classifications = enums<FaceRecord::Classification>(json.value("classifications"_L1));
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
    q.formats = enums<FaceRecord::Outline>(json.value("formats"_L1));
    q.duplicates = json.value("duplicates"_L1).toBool();
    q.conflicts = json.value("conflicts"_L1).toBool();
    q.folders = strings(json.value("folders"_L1));
    q.licenseStatuses = enums<LicenseStatus>(json.value("licenceStatuses"_L1));
    const QUuid collection = QUuid::fromString(json.value("collection"_L1).toString());
    if (!collection.isNull())
        q.collection = collection;
    return q;
}

} // namespace FontQueryJson
