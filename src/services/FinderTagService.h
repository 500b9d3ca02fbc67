// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LicenseStatus.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

// Reads and writes a file's tags in the freedesktop `user.xdg.tags` extended
// attribute, the one Dolphin and other file managers use, so labels set here show
// there and the reverse. Tags are read from disk once per path and cached; only
// our own successful writes change the cache. Setting a status reads the file's tags
// afresh and keeps every other tag's bytes as they are. Interface thread only.
class FinderTagService
{
public:
    // The tags of the file or folder, in the file's order; empty when it has none
    // or they can't be read (missing file, a file system without user xattrs).
    QStringList tags(const QString &path);
    // Replaces the licence tags, keeping every other tag in its order. A failure
    // prints one line and leaves the file and the cache as they were.
    void setLicenseStatus(LicenseStatus status, const QString &path);

    static QStringList readTags(const QString &path);
    // Returns an error description, empty on success.
    static QString writeTags(const QString &path, const QStringList &tags);

private:
    // The tags as the attribute holds them: bytes, trimmed, empty parts dropped.
    static QList<QByteArray> readRawTags(const QString &path);
    static QString writeRawTags(const QString &path, const QList<QByteArray> &tags);

    QHash<QString, QStringList> m_cache;
};
