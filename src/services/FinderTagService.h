// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LicenseStatus.h"

#include <QByteArray>
#include <QHash>

#include <optional>
#include <utility>
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
    // What the last failed write met, for the window to tell; taken once.
    struct WriteFailure
    {
        QString error;
        bool unsupported = false; // the file system keeps no tags at all
    };
    std::optional<WriteFailure> takeWriteFailure() { return std::exchange(m_failure, std::nullopt); }

    static QStringList readTags(const QString &path);
    // Returns an error description, empty on success.
    static QString writeTags(const QString &path, const QStringList &tags);

private:
    // The tags as the attribute holds them: bytes, trimmed, empty parts dropped.
    static QList<QByteArray> readRawTags(const QString &path);
    // `code` receives errno on failure.
    static QString writeRawTags(const QString &path, const QList<QByteArray> &tags, int *code = nullptr);

    QHash<QString, QStringList> m_cache;
    std::optional<WriteFailure> m_failure;
};
