#include "FontActivationService.h"

#include "Console.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <QtConcurrent/QtConcurrentRun>

#include <fontconfig/fontconfig.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kShardCount = 256;
constexpr qsizetype kMaxNameBytes = 255;

QString errorText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// The link's own text, not resolved further; empty when there is no link.
QString readLink(const QString &linkPath)
{
    QByteArray buffer(PATH_MAX, Qt::Uninitialized);
    const ssize_t size = ::readlink(QFile::encodeName(linkPath).constData(), buffer.data(),
                                    static_cast<size_t>(buffer.size()));
    return size < 0 ? QString() : QFile::decodeName(buffer.left(size));
}

} // namespace

FontActivationService::FontActivationService(std::optional<QString> linkFolder)
    : m_linkFolder(linkFolder.value_or(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                       u"/fonts/Morvane"_s))
{
    m_rebuilders.setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
}

FontActivationService::~FontActivationService()
{
    if (m_config)
        FcConfigDestroy(m_config);
}

QString FontActivationService::linkNameFor(const QString &fontPath)
{
    // A short hash of the whole path keeps two fonts with one file name apart, and the
    // file name keeps the link readable.
    const QByteArray hash = QCryptographicHash::hash(fontPath.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
    QString name = QString::fromLatin1(hash) + u'-' + fontPath.section(u'/', -1);
    while (name.toUtf8().size() > kMaxNameBytes)
        name.remove(13, 1); // shorten the file name's start, keeping hash and extension
    return name;
}

std::optional<QString> FontActivationService::linkPathFor(const QString &fontPath)
{
    const QMutexLocker lock(&m_mutex);
    if (!ensureReady())
        return std::nullopt;
    const auto found = m_linkOfFont.constFind(fontPath);
    return found == m_linkOfFont.cend() ? std::nullopt : std::optional<QString>(*found);
}

QString FontActivationService::shardOf(const QString &linkPath)
{
    return linkPath.section(u'/', 0, -2);
}

bool FontActivationService::ensureReady()
{
    if (m_ready)
        return true;
    // Loaded on first use, under the batch lock and usually on a worker, not while the
    // window is built. Configuration only (where caches go), no font list.
    if (!m_config)
        m_config = FcInitLoadConfig();
    // All shards exist from the start: creating one later would change its parent
    // and make every application rescan it.
    bool created = false;
    for (int i = 0; i < kShardCount; ++i) {
        const QString shard = m_linkFolder + u'/' + u"%1"_s.arg(i, 2, 16, QChar(u'0'));
        if (!QFileInfo::exists(shard)) {
            if (!QDir().mkpath(shard))
                return false;
            created = true;
        }
        m_shards.append(shard);
    }
    if (created) {
        rebuildShards(QSet<QString>(m_shards.begin(), m_shards.end()));
        for (const QString &folder : {m_linkFolder, m_linkFolder.section(u'/', 0, -2)}) {
            if (FcCache *cache = FcDirCacheRead(reinterpret_cast<const FcChar8 *>(QFile::encodeName(folder).constData()),
                                                FcFalse, m_config))
                FcDirCacheUnload(cache);
        }
    }
    loadIndex();
    m_ready = true;
    return true;
}

void FontActivationService::loadIndex()
{
    QSet<QString> duplicates;
    for (const QString &shard : std::as_const(m_shards)) {
        qsizetype size = 0;
        for (const QString &name : QDir(shard).entryList(QDir::Files | QDir::System | QDir::Hidden)) {
            const QString link = shard + u'/' + name;
            const QString font = readLink(link);
            if (font.isEmpty())
                continue;
            if (m_linkOfFont.contains(font)) {
                // Linked twice (a crash mid-batch): fontconfig would list it twice.
                ::unlink(QFile::encodeName(link).constData());
                duplicates.insert(shard);
                continue;
            }
            m_linkOfFont.insert(font, link);
            m_fontOfLink.insert(link, font);
            ++size;
        }
        m_shardSize.insert(shard, size);
    }
    rebuildShards(duplicates);
}

void FontActivationService::forget(const QString &linkPath)
{
    const QString font = m_fontOfLink.take(linkPath);
    m_linkOfFont.remove(font);
    --m_shardSize[shardOf(linkPath)];
}

QStringList FontActivationService::placeNewLinks(qsizetype count)
{
    // A shard holds at least 32 links before the next is opened, so a batch of 1,000
    // rewrites about 32 caches, not 256; beyond 8,192 links they share the load evenly.
    const qsizetype total = m_linkOfFont.size() + count;
    const qsizetype target = std::max<qsizetype>(32, (total + kShardCount - 1) / kShardCount);
    QStringList byEmptiness = m_shards;
    std::stable_sort(byEmptiness.begin(), byEmptiness.end(),
                     [this](const QString &a, const QString &b) { return m_shardSize.value(a) < m_shardSize.value(b); });
    QStringList placed;
    placed.reserve(count);
    for (const QString &shard : byEmptiness) {
        for (qsizetype room = target - m_shardSize.value(shard); room > 0 && placed.size() < count; --room)
            placed.append(shard);
        if (placed.size() == count)
            break;
    }
    while (placed.size() < count) // only when every shard is at the target already
        placed.append(byEmptiness.at(placed.size() % byEmptiness.size()));
    return placed;
}

QSet<QString> FontActivationService::rebuildShard(const QString &shard)
{
    QSet<QString> files;
    // Forced: the folder just changed, so its old cache is stale anyway.
    FcCache *cache = FcDirCacheRead(reinterpret_cast<const FcChar8 *>(QFile::encodeName(shard).constData()), FcTrue,
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

QHash<QString, QSet<QString>> FontActivationService::rebuildShards(const QSet<QString> &shards)
{
    // Each shard has its own folder and cache file, and fontconfig's scanning is
    // thread-safe, so shards are rebuilt side by side.
    const QList<QString> list(shards.begin(), shards.end());
    QList<QFuture<QSet<QString>>> rebuilt;
    for (const QString &shard : list)
        rebuilt.append(QtConcurrent::run(&m_rebuilders, [this, shard] { return rebuildShard(shard); }));
    QHash<QString, QSet<QString>> result;
    for (qsizetype i = 0; i < list.size(); ++i)
        result.insert(list[i], rebuilt[i].result());
    return result;
}

bool FontActivationService::activateFont(const QString &path)
{
    return activateFonts({path}).constFirst();
}

bool FontActivationService::deactivateFont(const QString &path)
{
    return deactivateFonts({path}).constFirst();
}

QList<bool> FontActivationService::activateFonts(const QStringList &paths)
{
    const QMutexLocker lock(&m_mutex);
    QList<bool> results(paths.size(), false);
    const auto fail = [&](qsizetype i, const QString &reason) {
        Console::printLine(u"Failed to activate font at "_s + paths[i] + u": "_s + reason);
    };
    if (!ensureReady()) {
        for (qsizetype i = 0; i < paths.size(); ++i)
            fail(i, u"can't create the folder "_s + m_linkFolder);
        return results;
    }

    QList<qsizetype> wanted;
    QSet<QString> seen;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString &path = paths[i];
        struct stat info{};
        if (::stat(QFile::encodeName(path).constData(), &info) != 0)
            fail(i, errorText(errno));
        else if (!S_ISREG(info.st_mode))
            fail(i, u"not a font file"_s);
        else if (m_linkOfFont.contains(path))
            results[i] = true; // already active
        else if (!seen.contains(path)) {
            seen.insert(path);
            wanted.append(i);
        }
    }

    // All link changes first, then each touched shard rebuilt once.
    const QStringList shards = placeNewLinks(wanted.size());
    QSet<QString> touched;
    QList<qsizetype> linked;
    for (qsizetype n = 0; n < wanted.size(); ++n) {
        const qsizetype i = wanted[n];
        const QString link = shards[n] + u'/' + linkNameFor(paths[i]);
        if (::symlink(QFile::encodeName(paths[i]).constData(), QFile::encodeName(link).constData()) != 0) {
            fail(i, errorText(errno));
            continue;
        }
        m_linkOfFont.insert(paths[i], link);
        m_fontOfLink.insert(link, paths[i]);
        ++m_shardSize[shards[n]];
        touched.insert(shards[n]);
        linked.append(i);
    }
    const QHash<QString, QSet<QString>> listedByShard = rebuildShards(touched);

    // What fontconfig could not read as a font is no activation: take the link back.
    QSet<QString> shardsToRedo;
    for (const qsizetype i : linked) {
        const QString link = m_linkOfFont.value(paths[i]);
        if (listedByShard.value(shardOf(link)).contains(link)) {
            results[i] = true;
            continue;
        }
        ::unlink(QFile::encodeName(link).constData());
        forget(link);
        shardsToRedo.insert(shardOf(link));
        fail(i, u"not a font file fontconfig can read"_s);
    }
    rebuildShards(shardsToRedo);
    // Duplicates within the batch share the first one's outcome.
    for (qsizetype i = 0; i < paths.size(); ++i) {
        if (!results[i] && m_linkOfFont.contains(paths[i]))
            results[i] = true;
    }
    return results;
}

QList<bool> FontActivationService::deactivateFonts(const QStringList &paths)
{
    const QMutexLocker lock(&m_mutex);
    QList<bool> results(paths.size(), true);
    if (!ensureReady())
        return results; // nothing of ours can be active
    QSet<QString> touched;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const auto found = m_linkOfFont.constFind(paths[i]);
        if (found == m_linkOfFont.cend())
            continue; // not active
        const QString link = *found;
        if (::unlink(QFile::encodeName(link).constData()) == 0 || errno == ENOENT) {
            forget(link);
            touched.insert(shardOf(link));
        } else {
            Console::printLine(u"Failed to deactivate font at "_s + paths[i] + u": "_s + errorText(errno));
            results[i] = false;
        }
    }
    rebuildShards(touched);
    return results;
}

QHash<QString, QString> FontActivationService::links()
{
    const QMutexLocker lock(&m_mutex);
    ensureReady();
    return m_fontOfLink;
}

void FontActivationService::removeLinks(const QStringList &linkPaths)
{
    const QMutexLocker lock(&m_mutex);
    if (!ensureReady())
        return;
    QSet<QString> touched;
    for (const QString &link : linkPaths) {
        if (!m_fontOfLink.contains(link) || ::unlink(QFile::encodeName(link).constData()) != 0)
            continue;
        forget(link);
        touched.insert(shardOf(link));
    }
    rebuildShards(touched);
}

void FontActivationService::removeActivationsExcept(const QSet<QString> &keep)
{
    QStringList unknown;
    for (const auto &[link, font] : links().asKeyValueRange()) {
        struct stat info{};
        if (!keep.contains(font) || ::stat(QFile::encodeName(font).constData(), &info) != 0)
            unknown.append(link);
    }
    removeLinks(unknown);
}
