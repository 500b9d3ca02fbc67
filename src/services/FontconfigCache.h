// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <mutex>
#include <optional>

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
    // Rescans `staged` (a folder fontconfig never lists) and gives its cache the name and
    // paths it will have as `live`, a path of the same length: renamed there, the folder
    // keeps its time, so the cache is valid and nobody scans its fonts again. Returns the
    // names of the files fontconfig listed; none when the cache could not be moved (then
    // the folder is scanned where it lands, as any other).
    std::optional<QSet<QString>> stage(const QString &staged, const QString &live);
    // Whether fontconfig would read `folder` from its cache rather than scan it.
    bool hasValidCache(const QString &folder);
    // Every rescan that read fonts since the start, and the fonts it read.
    int fontsScanned() const { return m_fontsScanned.load(); }
    // Removes the leftovers of interrupted cache writes for these folders only.
    void removeStaleLocks(const QStringList &folders);

private:
    std::once_flag m_loaded;
    std::atomic_int m_fontsScanned{0};
    _FcConfig *m_config = nullptr;
};
