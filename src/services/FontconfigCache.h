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
    // Rescans `folder`, writes its cache and returns the files fontconfig lists in it:
    // those the configuration accepts (Debian's 70-no-bitmaps.conf rejects bitmap-only
    // fonts, a user may reject a family), for a cached font no program lists is no
    // activation.
    QSet<QString> rebuild(const QString &folder);
    // The files the configuration turned down since the last call: readable, cached,
    // and listed by nobody.
    QSet<QString> takeTurnedDown();
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
    // Of `files` (all in `folder`, just cached), those the configuration accepts: the
    // folder's cache read into a configuration of its own as an application's fonts,
    // where fontconfig applies its accept and reject rules.
    QSet<QString> accepted(const QString &folder, const QSet<QString> &files);

    std::once_flag m_loaded;
    std::mutex m_probeMutex;
    _FcConfig *m_probe = nullptr;     // the configuration fonts are tried in
    QSet<QString> m_turnedDown;       // under the probe's mutex
    std::atomic_int m_fontsScanned{0};
    _FcConfig *m_config = nullptr;
};
