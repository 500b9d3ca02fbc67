// SPDX-License-Identifier: GPL-3.0-or-later
#include "Json.h"

using namespace Qt::StringLiterals;

namespace Json {

void appendString(QByteArray &out, QStringView text)
{
    static const char hex[] = "0123456789abcdef";
    out.append('"');
    const QByteArray utf8 = text.toUtf8();
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        switch (c) {
        case '"': out.append("\\\""); break;
        case '\\': out.append("\\\\"); break;
        case '\n': out.append("\\n"); break;
        case '\r': out.append("\\r"); break;
        case '\t': out.append("\\t"); break;
        case '\b': out.append("\\b"); break;
        case '\f': out.append("\\f"); break;
        default:
            if (byte < 0x20) {
                out.append("\\u00");
                out.append(hex[byte >> 4]);
                out.append(hex[byte & 0xf]);
            } else {
                out.append(c);
            }
        }
    }
    out.append('"');
}

void appendKey(QByteArray &out, const char *key)
{
    out.append('"').append(key).append("\":");
}

QString uuidText(const QUuid &uuid)
{
    return uuid.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> parseUuid(const QString &text)
{
    // Exactly 8-4-4-4-12 hex digits; braces and other spellings are malformed.
    if (text.size() != 36)
        return std::nullopt;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool hyphenSlot = (i == 8 || i == 13 || i == 18 || i == 23);
        const char16_t u = c.unicode();
        const bool hex = (u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'f') || (u >= u'A' && u <= u'F');
        if (hyphenSlot ? u != u'-' : !hex)
            return std::nullopt;
    }
    const QUuid uuid = QUuid::fromString(text);
    if (uuid.isNull() && text != u"00000000-0000-0000-0000-000000000000"_s)
        return std::nullopt;
    return uuid;
}

QString typeName(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null: return u"null"_s;
    case QJsonValue::Bool: return u"a boolean"_s;
    case QJsonValue::Double: return u"a number"_s;
    case QJsonValue::String: return u"a string"_s;
    case QJsonValue::Array: return u"an array"_s;
    case QJsonValue::Object: return u"an object"_s;
    case QJsonValue::Undefined: break;
    }
    return u"missing"_s;
}

static std::optional<QString> checkPresent(const QJsonObject &object, QLatin1StringView key, QJsonValue &value)
{
    value = object.value(key);
    if (value.isUndefined())
        return u"key \"%1\" is missing"_s.arg(key);
    return std::nullopt;
}

static QString wrongType(QLatin1StringView key, const char *wanted, const QJsonValue &value)
{
    return u"key \"%1\" must be %2 but is %3"_s.arg(key, QLatin1StringView(wanted), typeName(value));
}

std::optional<QString> readString(const QJsonObject &object, QLatin1StringView key, QString &out)
{
    QJsonValue value;
    if (auto error = checkPresent(object, key, value))
        return error;
    if (!value.isString())
        return wrongType(key, "a string", value);
    out = value.toString();
    return std::nullopt;
}

std::optional<QString> readBool(const QJsonObject &object, QLatin1StringView key, bool &out)
{
    QJsonValue value;
    if (auto error = checkPresent(object, key, value))
        return error;
    if (!value.isBool())
        return wrongType(key, "a boolean", value);
    out = value.toBool();
    return std::nullopt;
}

std::optional<QString> readUuid(const QJsonObject &object, QLatin1StringView key, QUuid &out)
{
    QString text;
    if (auto error = readString(object, key, text))
        return error;
    const std::optional<QUuid> uuid = parseUuid(text);
    if (!uuid)
        return u"key \"%1\" is not a valid UUID: \"%2\""_s.arg(key, text);
    out = *uuid;
    return std::nullopt;
}

} // namespace Json
