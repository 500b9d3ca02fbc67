// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontconfigCache.h"

#include "OwnFontconfig.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <fontconfig/fontconfig.h>

using namespace Qt::StringLiterals;

FontconfigCache::~FontconfigCache()
{
    if (m_config)
        FcConfigDestroy(m_config);
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
    if (FcFontSet *set = FcCacheCopySet(cache)) {
        for (int i = 0; i < set->nfont; ++i) {
            FcChar8 *file = nullptr;
            if (FcPatternGetString(set->fonts[i], FC_FILE, 0, &file) == FcResultMatch)
                files.insert(QFile::decodeName(reinterpret_cast<const char *>(file)));
        }
        FcFontSetDestroy(set);
    }
    FcDirCacheUnload(cache);
    return files;
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
            const bool leftover = name.endsWith(u".LCK"_s) || name.endsWith(u".NEW"_s) || name.contains(u".TMP-"_s);
            if (leftover && ours.contains(name.section(u'-', 0, 0)))
                QFile::remove(cacheFolder + u'/' + name);
        }
    }
    FcStrListDone(dirs);
}
