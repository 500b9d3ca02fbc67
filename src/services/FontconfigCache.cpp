// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontconfigCache.h"

#include "OwnFontconfig.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <fontconfig/fontconfig.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QSet<QString> filesOf(FcCache *cache)
{
    QSet<QString> files;
    if (FcFontSet *set = FcCacheCopySet(cache)) {
        for (int i = 0; i < set->nfont; ++i) {
            FcChar8 *file = nullptr;
            if (FcPatternGetString(set->fonts[i], FC_FILE, 0, &file) == FcResultMatch)
                files.insert(QFile::decodeName(reinterpret_cast<const char *>(file)));
        }
        FcFontSetDestroy(set);
    }
    return files;
}

} // namespace

FontconfigCache::~FontconfigCache()
{
    if (m_config)
        FcConfigDestroy(m_config);
    if (m_probe)
        FcConfigDestroy(m_probe);
}

void FontconfigCache::load()
{
    std::call_once(m_loaded, [this] { m_config = OwnFontconfig::loadUserConfig(); });
}

QSet<QString> FontconfigCache::rebuild(const QString &folder)
{
    load();
    QSet<QString> files;
    // Forced: the folder just changed, so its old cache is stale anyway.
    FcCache *cache = FcDirCacheRead(reinterpret_cast<const FcChar8 *>(QFile::encodeName(folder).constData()), FcTrue,
                                    m_config);
    if (!cache)
        return files;
    files = filesOf(cache);
    FcDirCacheUnload(cache);
    m_fontsScanned += int(files.size());
    return accepted(folder, files);
}

QSet<QString> FontconfigCache::accepted(const QString &folder, const QSet<QString> &files)
{
    if (files.isEmpty())
        return files; // a folder of folders: nothing of its own to judge
    const std::lock_guard lock(m_probeMutex);
    if (!m_probe)
        m_probe = OwnFontconfig::loadUserConfig();
    // The cache was just written for this configuration: read, not scanned again.
    if (!m_probe || !FcConfigAppFontAddDir(m_probe, reinterpret_cast<const FcChar8 *>(QFile::encodeName(folder).constData())))
        return files;
    QSet<QString> kept;
    if (FcFontSet *set = FcConfigGetFonts(m_probe, FcSetApplication)) {
        for (int i = 0; i < set->nfont; ++i) {
            FcChar8 *file = nullptr;
            if (FcPatternGetString(set->fonts[i], FC_FILE, 0, &file) == FcResultMatch) {
                const QString path = QFile::decodeName(reinterpret_cast<const char *>(file));
                if (files.contains(path))
                    kept.insert(path);
            }
        }
    }
    FcConfigAppFontClear(m_probe);
    for (const QString &file : files) {
        if (!kept.contains(file))
            m_turnedDown.insert(file);
    }
    return kept;
}

QSet<QString> FontconfigCache::takeTurnedDown()
{
    const std::lock_guard lock(m_probeMutex);
    return std::exchange(m_turnedDown, {});
}

bool FontconfigCache::hasValidCache(const QString &folder)
{
    load();
    FcCache *cache = FcDirCacheLoad(reinterpret_cast<const FcChar8 *>(QFile::encodeName(folder).constData()), m_config, nullptr);
    if (cache)
        FcDirCacheUnload(cache);
    return cache != nullptr;
}

std::optional<QSet<QString>> FontconfigCache::stage(const QString &staged, const QString &live)
{
    load();
    const QByteArray from = QFile::encodeName(staged), to = QFile::encodeName(live);
    if (from.size() != to.size() || from == to)
        return std::nullopt;
    const QSet<QString> scanned = rebuild(staged);
    // Where fontconfig keeps that cache: a name made of the MD5 of the folder's path, as
    // long as no <remap-dir> or salt in the user's configuration says otherwise.
    FcChar8 *cacheFile = nullptr;
    FcCache *cache = FcDirCacheLoad(reinterpret_cast<const FcChar8 *>(from.constData()), m_config, &cacheFile);
    if (!cache)
        return std::nullopt;
    FcDirCacheUnload(cache);
    const QString stagedCache = QFile::decodeName(reinterpret_cast<const char *>(cacheFile));
    FcStrFree(cacheFile);
    const QString name = stagedCache.section(u'/', -1);
    const QString md5 = QString::fromLatin1(QCryptographicHash::hash(from, QCryptographicHash::Md5).toHex());
    if (!name.startsWith(md5))
        return std::nullopt;
    const QString liveCache = stagedCache.section(u'/', 0, -2) + u'/'
                              + QString::fromLatin1(QCryptographicHash::hash(to, QCryptographicHash::Md5).toHex())
                              + name.mid(md5.size());

    // The same cache with the live folder's path wherever the staged one's stands: the
    // folder's own name and every file's. Both have the same length, so nothing moves.
    // (fontconfig can't be asked to read it back before the live folder exists: it checks
    // a cache against its folder's time.)
    QFile in(stagedCache);
    if (!in.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray bytes = in.readAll();
    in.close();
    if (bytes.count(from) < 1 + scanned.size() || bytes.contains(to))
        return std::nullopt;
    bytes.replace(from, to);
    const QString written = liveCache + u".morvane-new"_s;
    QFile out(written);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(bytes) != bytes.size() || !out.flush()
        || ::rename(QFile::encodeName(written).constData(), QFile::encodeName(liveCache).constData()) != 0) {
        out.remove();
        return std::nullopt;
    }
    QSet<QString> names;
    for (const QString &file : scanned)
        names.insert(file.mid(staged.size() + 1));
    return names;
}

void FontconfigCache::removeStaleLocks(const QStringList &folders)
{
    load();
    // A process killed while fontconfig wrote a cache leaves its lock and temporary
    // files, which stop that cache from being written again. Only ours, found by
    // fontconfig's cache name: the MD5 of the folder's path.
    QSet<QString> ours;
    for (const QString &folder : folders)
        ours.insert(QString::fromLatin1(QCryptographicHash::hash(QFile::encodeName(folder), QCryptographicHash::Md5).toHex()));
    FcStrList *dirs = FcConfigGetCacheDirs(m_config);
    while (FcChar8 *dir = FcStrListNext(dirs)) {
        const QString cacheFolder = QFile::decodeName(reinterpret_cast<const char *>(dir));
        for (const QString &name : QDir(cacheFolder).entryList(QDir::Files | QDir::Hidden)) {
            const bool leftover = name.endsWith(u".LCK"_s) || name.endsWith(u".NEW"_s) || name.contains(u".TMP-"_s)
                                  || name.endsWith(u".morvane-new"_s); // our own, from stage()
            if (leftover && ours.contains(name.section(u'-', 0, 0)))
                QFile::remove(cacheFolder + u'/' + name);
        }
    }
    FcStrListDone(dirs);
}
