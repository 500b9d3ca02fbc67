// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <mutex>

struct _FcConfig;

// Every fontconfig call activation makes: the user's configuration (where caches go),
// rebuilding one folder's cache as every other program will read it, and clearing the
// lock and temporary files a killed process leaves beside a cache. rebuild() may run on
// several threads at once: each folder has its own cache file.
class FontconfigCache
{
public:
    FontconfigCache() = default;
    ~FontconfigCache();
    FontconfigCache(const FontconfigCache &) = delete;
    FontconfigCache &operator=(const FontconfigCache &) = delete;

    // Configuration only, no font list: cheap, and done once.
    void load();
    // Rescans `folder`, writes its cache and returns the files fontconfig lists in it.
    QSet<QString> rebuild(const QString &folder);
    // Removes the leftovers of interrupted cache writes for these folders only.
    void removeStaleLocks(const QStringList &folders);

private:
    std::once_flag m_loaded;
    _FcConfig *m_config = nullptr;
};
