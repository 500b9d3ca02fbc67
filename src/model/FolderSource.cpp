// SPDX-License-Identifier: GPL-3.0-or-later
#include "FolderSource.h"

#include "Json.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

void FolderSource::appendJson(QByteArray &out) const
{
    out.append('{');
    Json::appendKey(out, "id");
    Json::appendString(out, Json::uuidText(id));
    out.append(',');
    Json::appendKey(out, "path");
    Json::appendString(out, path);
    out.append(',');
    Json::appendKey(out, "name");
    Json::appendString(out, name);
    out.append('}');
}

Expected<FolderSource> FolderSource::fromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return Expected<FolderSource>::failure(u"expected an object but found %1"_s.arg(Json::typeName(value)));
    const QJsonObject object = value.toObject();
    FolderSource source;
    if (auto error = Json::readUuid(object, "id"_L1, source.id))
        return Expected<FolderSource>::failure(*error);
    if (auto error = Json::readString(object, "path"_L1, source.path))
        return Expected<FolderSource>::failure(*error);
    if (auto error = Json::readString(object, "name"_L1, source.name))
        return Expected<FolderSource>::failure(*error);
    return source;
}

size_t qHash(const FolderSource &source, size_t seed) noexcept
{
    return qHashMulti(seed, source.id, source.path, source.name);
}
