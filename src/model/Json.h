// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringView>
#include <QUuid>

#include <optional>

// Compact JSON writing with keys in the order we choose (QJsonDocument sorts them),
// and decoding helpers whose errors say which key is wrong and how.
namespace Json {

void appendString(QByteArray &out, QStringView text);
void appendKey(QByteArray &out, const char *key);

// Upper-case, hyphenated, no braces: the form every file of ours stores.
QString uuidText(const QUuid &uuid);
std::optional<QUuid> parseUuid(const QString &text);

QString typeName(const QJsonValue &value);

// Each returns an error text, or nothing when the key holds the wanted type.
std::optional<QString> readString(const QJsonObject &object, QLatin1StringView key, QString &out);
std::optional<QString> readBool(const QJsonObject &object, QLatin1StringView key, bool &out);
std::optional<QString> readUuid(const QJsonObject &object, QLatin1StringView key, QUuid &out);

} // namespace Json
