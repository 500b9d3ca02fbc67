// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Expected.h"

#include <QByteArray>
#include <QHashFunctions>
#include <QJsonValue>
#include <QString>
#include <QUuid>

// A font folder the user added to the library.
struct FolderSource
{
    QUuid id;
    QString path;
    QString name;

    // JSON object with keys "id", "path", "name", written in that order.
    void appendJson(QByteArray &out) const;
    static Expected<FolderSource> fromJson(const QJsonValue &value);

    friend bool operator==(const FolderSource &, const FolderSource &) = default;
};

size_t qHash(const FolderSource &source, size_t seed = 0) noexcept;
