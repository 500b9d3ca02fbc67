// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontActivationService.h"
#include "model/SharedPaths.h"

#include "Console.h"
#include "ActivationFiles.h"
#include "FontLinkFile.h"
#include "LinkPlacement.h"

#include "fonts/FreeTypeLibrary.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <QtConcurrent/QtConcurrentMap>
#include <QtConcurrent/QtConcurrentRun>


#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using namespace ActivationFiles;

namespace {

// A rule of the system's or the user's font configuration hides it from every program
// (Debian's 70-no-bitmaps.conf, for one, hides bitmap-only fonts).
const QString kTurnedDownByConfiguration = QStringLiteral("the font configuration hides it from every program");

constexpr int kTopCount = 256;
constexpr int kShardsPerTop = 16;
constexpr qsizetype kMaxNameBytes = 255;
constexpr qint64 kRebuildIntervalMs = 1000;

} // namespace

FontActivationService::FontActivationService(std::optional<QString> linkFolder)
    : m_linkFolder(linkFolder.value_or(defaultLinkFolder()))
{
    // "Morvane" beside ".Morvan": a staged group's cache names its folder and files by
    // path, and a path of the same length can be written over it in place.
    const QString name = m_linkFolder.section(u'/', -1);
    if (name.size() >= 2 && !name.startsWith(u'.'))
        m_stagingFolder = m_linkFolder.section(u'/', 0, -2) + u"/."_s + name.chopped(1);
    m_rebuilders.setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
    m_sinceRebuild.start();
}

QString FontActivationService::defaultLinkFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/Morvane"_s;
}

FontActivationService::~FontActivationService() = default;

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
    const QString link = m_links.linkOf(fontPath);
    return link.isEmpty() ? std::nullopt : std::optional<QString>(link);
}

QString FontActivationService::shardOf(const QString &linkPath)
{
    return linkPath.left(linkPath.lastIndexOf(u'/'));
}

bool FontActivationService::ensureReady()
{
    if (m_ready)
        return true;
    // fontconfig writes a cache to the first cache folder it can use, and makes a
    // missing one on the way: two rebuilds racing to make it would send one cache to
    // the deprecated ~/.fontconfig. Made here, before any rebuild.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/fontconfig"_s);
    // Loaded on first use, under the lock and usually on a worker, not while the
    // window is built. Configuration only (where caches go), no font list.
    m_fontconfig.load();
    // Every program that uses fontconfig reads each of our folders when it starts, empty
    // ones too: folders are made with their first link and go with their last, so with
    // nothing active there is nothing to read. Up to 256 top folders (00 … ff) hold the
    // shards, each filled to kShardsPerTop before another is made.
    for (int i = 0; i < kTopCount; ++i)
        m_tops.append(m_linkFolder + u'/' + u"%1"_s.arg(i, 2, 16, QChar(u'0')));
    m_topSet = QSet<QString>(m_tops.cbegin(), m_tops.cend());
    m_noNewLinks = m_topSet;
    loadIndex();
    loadGroups();
    m_ready = true;
    return true;
}

void FontActivationService::indexLinks(const QString &folder, const FolderEntries &entries, QSet<QString> &duplicateShards)
{
    const int folderId = entries.linkNames.isEmpty() ? -1 : m_links.folderId(folder);
    for (qsizetype i = 0; i < entries.linkNames.size(); ++i) {
        const QString font = SharedPaths::share(entries.targets[i]);
        if (m_links.containsFont(font)) {
            // Linked twice (a crash mid-batch): fontconfig would list it twice.
            FontLinkFile::remove(encoded(folder + u'/' + entries.linkNames[i]));
            duplicateShards.insert(folder);
            continue;
        }
        m_links.insert(font, folderId, entries.linkNames[i]);
        ++m_shardSize[folder];
    }
    for (const QString &stray : entries.strays) {
        ::unlink(encoded(folder + u'/' + stray).constData());
        if (!stray.startsWith(u'.'))
            duplicateShards.insert(folder); // fontconfig listed it
    }
    if (!entries.linkNames.isEmpty())
        m_shardTimes.insert(folder, entries.changed);
}

void FontActivationService::loadIndex()
{
    // Reading the folders is the kernel's work and runs side by side; the index itself
    // is built here, in the folders' order.
    const QList<FolderEntries> tops = QtConcurrent::blockingMapped(&m_rebuilders, m_tops, &readFolder);
    QStringList shards;
    for (qsizetype i = 0; i < m_tops.size(); ++i) {
        for (const QString &shardName : tops.at(i).folders)
            shards.append(m_tops.at(i) + u'/' + shardName);
    }
    const QList<FolderEntries> shardEntries = QtConcurrent::blockingMapped(&m_rebuilders, shards, &readFolder);

    // A font linked twice keeps the link in a shard: links right in a top folder are
    // from before shards were made on demand.
    QSet<QString> duplicates;
    for (qsizetype i = 0; i < shards.size(); ++i) {
        m_shardSize.insert(shards.at(i), 0);
        indexLinks(shards.at(i), shardEntries.at(i), duplicates);
    }
    for (qsizetype i = 0; i < m_tops.size(); ++i) {
        indexLinks(m_tops.at(i), tops.at(i), duplicates);
        if (QFileInfo::exists(m_tops.at(i)))
            m_shardsInTop.insert(m_tops.at(i), static_cast<int>(tops.at(i).folders.size()));
    }
    // Empty shards and top folders (an older Morvane made all 256 at its first start, a
    // kill may leave one emptied) go now rather than be read by every program.
    for (qsizetype i = 0; i < shards.size(); ++i) {
        if (shardEntries.at(i).linkNames.isEmpty() && shardEntries.at(i).folders.isEmpty())
            m_pendingShards.insert(shards.at(i));
    }
    for (const QString &top : std::as_const(m_tops)) {
        if (m_shardsInTop.value(top, -1) == 0)
            m_pendingShards.insert(top);
    }
    removeEmptyShards();
    m_pendingShards.clear(); // nothing else changed: their parents are rescanned by whoever reads them next
    rebuildShards(duplicates);
}

void FontActivationService::forget(QString linkPath)
{
    m_links.takeLink(linkPath);
    --m_shardSize[shardOf(linkPath)];
    const auto group = m_groups.find(groupOfShard(shardOf(linkPath)));
    if (group != m_groups.end())
        group->changed = true; // its cache no longer describes it
}

void FontActivationService::unlinkAndForget(QString linkPath)
{
    FontLinkFile::remove(encoded(linkPath));
    forget(linkPath);
    m_pendingShards.insert(shardOf(linkPath));
}

QString FontActivationService::createShard()
{
    // In the made top folder with the fewest shards while it has room, so the top
    // folders' caches (which list only their shard folders) stay small and few; a new
    // top folder only when all made ones are full; past 256, the emptiest.
    QString top;
    for (const QString &made : m_tops) {
        const auto shards = m_shardsInTop.constFind(made);
        if (shards != m_shardsInTop.cend() && *shards < kShardsPerTop && (top.isEmpty() || *shards < m_shardsInTop.value(top)))
            top = made;
    }
    if (top.isEmpty()) {
        const auto unmade = std::find_if(m_tops.cbegin(), m_tops.cend(), [this](const QString &t) { return !m_shardsInTop.contains(t); });
        if (unmade != m_tops.cend()) {
            if (!QFileInfo::exists(m_linkFolder))
                m_pendingShards.insert(m_linkFolder.section(u'/', 0, -2)); // lists our folder now
            if (!QDir().mkpath(*unmade))
                return {};
            top = *unmade;
            m_shardsInTop.insert(top, 0);
            m_pendingShards.insert(m_linkFolder); // lists one more top folder
        } else {
            top = *std::min_element(m_tops.cbegin(), m_tops.cend(), [this](const QString &a, const QString &b) {
                return m_shardsInTop.value(a) < m_shardsInTop.value(b);
            });
        }
    }
    int number = m_shardsInTop.value(top);
    QString shard;
    do {
        shard = top + u'/' + QString::number(number++);
    } while (QFileInfo::exists(shard));
    if (!QDir().mkdir(shard))
        return {};
    m_shardsInTop.insert(top, m_shardsInTop.value(top) + 1);
    m_shardSize.insert(shard, 0);
    m_pendingShards.insert(top); // its list of folders changed
    return shard;
}

QStringList FontActivationService::placeNewLinks(qsizetype count)
{
    QStringList placed = LinkPlacement::place(count, m_shardSize, m_pendingShards, m_noNewLinks, kShardCapacity);
    while (placed.size() < count) {
        const QString shard = createShard();
        if (shard.isEmpty())
            break; // the caller reports the fonts left without a place
        for (qsizetype room = kShardCapacity; room > 0 && placed.size() < count; --room)
            placed.append(shard);
    }
    return placed;
}

QSet<QString> FontActivationService::rebuildShard(const QString &shard)
{
    return m_fontconfig.rebuild(shard);
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

void FontActivationService::failForSystem(const QString &path, const QString &reason)
{
    m_systemFailures.append(path);
    m_systemFailureReason = reason;
}

QStringList FontActivationService::takeSystemFailures(QString *reason)
{
    const QMutexLocker lock(&m_mutex);
    if (reason)
        *reason = m_systemFailureReason;
    return std::exchange(m_systemFailures, {});
}

void FontActivationService::setAsideSpecialFiles(const QSet<QString> &shards)
{
    QStringList special;
    for (const QString &shard : shards) {
        if (m_shardSize.value(shard) == 0)
            continue;
        const FolderEntries entries = readFolder(shard);
        for (qsizetype i = 0; i < entries.linkNames.size(); ++i) {
            struct stat target{};
            // A link whose file is gone is skipped by fontconfig; anything there must be
            // a regular file, or fontconfig's open() may wait for ever.
            if (::stat(encoded(entries.targets[i]).constData(), &target) == 0 && !S_ISREG(target.st_mode))
                special.append(shard + u'/' + entries.linkNames[i]);
        }
    }
    for (const QString &link : std::as_const(special)) {
        const QString font = m_links.fontOf(link);
        Console::printLine(u"Failed to activate font at "_s + font + u": it is no longer a regular file"_s);
        if (!font.isEmpty()) {
            m_turnedDown.append(font);
            m_failureReasons.insert(font, u"it is no longer a regular file"_s);
        }
        FontLinkFile::remove(encoded(link));
        if (m_links.containsLink(link))
            forget(link);
    }
}

void FontActivationService::rebuildPending()
{
    m_sinceRebuild.restart();
    removeEmptyGroups();
    removeEmptyShards();
    if (m_pendingShards.isEmpty())
        return;
    setAsideSpecialFiles(m_pendingShards);
    const QSet<QString> shards = std::exchange(m_pendingShards, {});
    const QHash<QString, QSet<QString>> listed = rebuildShards(shards);
    // fontconfig is the judge: a link it does not list is no activation.
    QStringList refused;
    for (const QString &shard : shards) {
        if (m_shardSize.value(shard) == 0)
            continue; // no links: a top folder, or a shard emptied by deactivation
        const QSet<QString> &files = listed[shard];
        for (const QString &name : readFolder(shard).linkNames) {
            const QString link = shard + u'/' + name;
            if (!files.contains(link) && m_links.containsLink(link))
                refused.append(link);
        }
    }
    const QSet<QString> configured = m_fontconfig.takeTurnedDown(); // read, and rejected by a rule
    for (const QString &link : std::as_const(refused)) {
        const QString font = m_links.fontOf(link);
        const bool byRule = configured.contains(link);
        Console::printLine(u"Failed to activate font at "_s + font
                           + (byRule ? u": the font configuration turns it down"_s : u": not a font file fontconfig can read"_s));
        m_turnedDown.append(font);
        m_failureReasons.insert(font, byRule ? kTurnedDownByConfiguration : unreadable());
        unlinkAndForget(link);
    }
    if (!refused.isEmpty())
        rebuildShards(std::exchange(m_pendingShards, {}));
}

void FontActivationService::removeEmptyShards()
{
    // A shard without links goes (rmdir refuses one that has anything), then a top folder
    // without shards: fontconfig would go on reading them in every program.
    for (const QString &shard : QSet<QString>(m_pendingShards)) {
        const QString top = shardOf(shard);
        if (!m_topSet.contains(top) || m_shardSize.value(shard) != 0 || ::rmdir(encoded(shard).constData()) != 0)
            continue;
        m_shardSize.remove(shard);
        m_pendingShards.remove(shard);
        m_shardsInTop[top] = std::max(0, m_shardsInTop.value(top) - 1);
        m_pendingShards.insert(top);
    }
    for (const QString &top : QSet<QString>(m_pendingShards)) {
        if (!m_topSet.contains(top) || m_shardsInTop.value(top, -1) != 0 || m_shardSize.value(top) != 0
            || ::rmdir(encoded(top).constData()) != 0)
            continue;
        m_shardsInTop.remove(top);
        m_shardSize.remove(top);
        m_pendingShards.remove(top);
        m_pendingShards.insert(m_linkFolder);
    }
}

void FontActivationService::beginBatch()
{
    const QMutexLocker lock(&m_mutex);
    m_inBatch = true;
    m_turnedDown.clear();
    m_sinceRebuild.restart();
}

QStringList FontActivationService::finishBatch()
{
    const QMutexLocker lock(&m_mutex);
    m_inBatch = false;
    if (ensureReady()) {
        settleGroups();
        rebuildPending();
    }
    return std::exchange(m_turnedDown, {});
}

bool FontActivationService::activateFont(const QString &path)
{
    return activateFonts({path}).constFirst();
}

bool FontActivationService::deactivateFont(const QString &path)
{
    return deactivateFonts({path}).constFirst();
}

void FontActivationService::failActivation(const QString &path, const QString &reason, const QString &inWords)
{
    Console::printLine(u"Failed to activate font at "_s + path + u": "_s + reason);
    m_failureReasons.insert(path, inWords.isEmpty() ? reason : inWords);
}

void FontActivationService::linkLoose(const QStringList &fonts)
{
    const QStringList shards = placeNewLinks(fonts.size());
    for (qsizetype n = 0; n < fonts.size(); ++n) {
        const QString &font = fonts[n];
        if (n >= shards.size()) {
            failActivation(font, u"can't create a folder in "_s + m_linkFolder);
            failForSystem(font, u"can't create a folder in "_s + m_linkFolder);
            continue;
        }
        const QString link = shards[n] + u'/' + linkNameFor(font);
        const FontLinkFile::Made made = FontLinkFile::make(encoded(font), encoded(link), m_copiesAllowed);
        if (!made.ok) {
            const QString error = errorText(made.error);
            failActivation(font, error);
            failForSystem(font, error + u" (in "_s + shards[n] + u')');
            continue;
        }
        m_links.insert(font, link);
        ++m_shardSize[shards[n]];
        m_pendingShards.insert(shards[n]);
    }
}

QList<bool> FontActivationService::activateFonts(const QStringList &paths)
{
    const QMutexLocker lock(&m_mutex);
    QList<bool> results(paths.size(), false);
    if (!ensureReady()) {
        for (const QString &path : paths) {
            failActivation(path, m_systemFailureReason);
            m_systemFailures.append(path);
        }
        return results;
    }

    QStringList wanted;
    QSet<QString> seen;
    for (const QString &path : paths) {
        struct stat info{};
        if (m_links.containsFont(path) || seen.contains(path))
            continue; // already active, or asked twice
        seen.insert(path);
        if (::stat(encoded(path).constData(), &info) != 0) {
            const int error = errno;
            failActivation(path, errorText(error), error == ENOENT ? u"the file is gone"_s : QString());
            // Gone is the font's own fault; a folder that can't be read or a drive that
            // stopped answering is not.
            if (error != ENOENT && error != ENOTDIR)
                failForSystem(path, errorText(error));
        } else if (!S_ISREG(info.st_mode))
            failActivation(path, u"not a font file"_s, u"it is not a font file"_s);
        else if (askGroupIn(path))
            continue; // fontconfig read it when its group was made ready
        else if (!readsAsFont(path))
            failActivation(path, u"not a font file fontconfig can read"_s, unreadable());
        else
            wanted.append(path);
    }

    // All link changes first; caches are rebuilt after (or at the batch's end).
    linkLoose(wanted);
    if (!m_inBatch)
        settleGroups();
    if (!m_inBatch || m_sinceRebuild.elapsed() >= kRebuildIntervalMs) {
        rebuildPending();
        if (!m_inBatch)
            m_turnedDown.clear();
    }
    // Duplicates share the first one's outcome; what fontconfig refused is not active.
    for (qsizetype i = 0; i < paths.size(); ++i)
        results[i] = m_links.containsFont(paths[i]) || isAskedIn(paths[i]);
    return results;
}

QList<bool> FontActivationService::deactivateFonts(const QStringList &paths)
{
    const QMutexLocker lock(&m_mutex);
    QList<bool> results(paths.size(), true);
    if (!ensureReady())
        return results; // nothing of ours can be active
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString link = m_links.linkOf(paths[i]);
        if (link.isEmpty())
            continue; // not active
        if (askGroupOut(paths[i], link))
            continue; // goes with its whole group
        if (FontLinkFile::remove(encoded(link))) {
            forget(link);
            m_pendingShards.insert(shardOf(link));
        } else {
            const QString error = errorText(errno);
            Console::printLine(u"Failed to deactivate font at "_s + paths[i] + u": "_s + error);
            m_failureReasons.insert(paths[i], error);
            results[i] = false;
        }
    }
    if (!m_inBatch)
        settleGroups();
    if (!m_inBatch || m_sinceRebuild.elapsed() >= kRebuildIntervalMs)
        rebuildPending();
    return results;
}

QHash<QString, QString> FontActivationService::takeFailureReasons()
{
    const QMutexLocker lock(&m_mutex);
    return std::exchange(m_failureReasons, {});
}

QHash<QString, QString> FontActivationService::links()
{
    const QMutexLocker lock(&m_mutex);
    ensureReady();
    return m_links.linksToFonts();
}

QSet<QString> FontActivationService::recordedActivations()
{
    const QMutexLocker lock(&m_mutex);
    ensureReady();
    return m_links.fonts();
}

void FontActivationService::removeLinks(const QStringList &linkPaths)
{
    const QMutexLocker lock(&m_mutex);
    if (!ensureReady())
        return;
    for (const QString &link : linkPaths) {
        if (m_links.containsLink(link))
            unlinkAndForget(link);
    }
    rebuildPending();
}

void FontActivationService::removeActivationsExcept(const QSet<QString> &keep)
{
    // Links to files that are gone were taken back by repairActivations().
    const QMutexLocker lock(&m_mutex);
    if (!ensureReady())
        return;
    QStringList unknown;
    m_links.forEach([&](const QString &link, const QString &font) {
        if (!keep.contains(font))
            unknown.append(link);
    });
    for (const QString &link : std::as_const(unknown))
        unlinkAndForget(link);
    rebuildPending();
}

void FontActivationService::removeStaleCacheLocks()
{
    // Every folder of ours fontconfig may have been writing a cache for: links, shards,
    // the groups' folder and its buckets, and each group live or staged (one whose making
    // was cut short included).
    QStringList ours{m_linkFolder, groupsFolder()};
    ours.append(m_shardSize.keys());
    ours.append(m_tops);
    for (int digit = 0; digit < 16; ++digit)
        ours.append(groupsFolder() + u'/' + QString::number(digit, 16));
    for (auto it = m_groups.cbegin(); it != m_groups.cend(); ++it)
        ours.append(liveGroupPath(it.key()));
    if (!m_stagingFolder.isEmpty()) {
        ours.append(m_stagingFolder + u"/g"_s);
        for (int digit = 0; digit < 16; ++digit)
            ours.append(m_stagingFolder + u"/g/"_s + QString::number(digit, 16));
        for (auto it = m_groups.cbegin(); it != m_groups.cend(); ++it)
            ours.append(stagedGroupPath(it.key()));
    }
    ours.append(std::exchange(m_cutShortGroups, {}));
    m_fontconfig.removeStaleLocks(ours);
}

void FontActivationService::repairActivations()
{
    const QMutexLocker lock(&m_mutex);
    if (!ensureReady())
        return;
    removeStaleCacheLocks();
    QSet<QString> changed;
    struct stat ours{};
    const bool haveOurs = ::stat(encoded(m_linkFolder).constData(), &ours) == 0;
    m_links.forEach([&](const QString &link, const QString &font) {
        struct stat target{};
        if (::stat(encoded(font).constData(), &target) != 0 || !S_ISREG(target.st_mode)) {
            // Gone, or now a folder (fontconfig would list what is inside it).
            unlinkAndForget(link);
            return;
        }
        // A file entry whose font was replaced shows the old file; a symbolic link that a
        // file entry could replace (made before they were, or before copies were allowed)
        // is one sandboxed programs can't follow. Either is made again.
        const QByteArray entry = encoded(link);
        const bool symbolic = FontLinkFile::kindOf(entry) == FontLinkFile::Kind::Symbolic;
        // A hard link of ours is the font's own file, whose change time every link made to
        // it moves: its time of change says nothing there.
        const bool linkable = haveOurs && target.st_dev == ours.st_dev && (target.st_uid == ::geteuid() || ::geteuid() == 0);
        if (symbolic ? (m_copiesAllowed || linkable) : !FontLinkFile::isCurrent(encoded(font), entry)) {
            if (!symbolic && !readsAsFont(font)) { // replaced by something that is no font
                unlinkAndForget(link);
                return;
            }
            if (remake(font, link))
                changed.insert(shardOf(link));
            return;
        }
        // Changed since its shard last changed (when the link was made, or the shard
        // last repaired): fontconfig's cache may still describe the old file, because
        // the shard folder itself did not change.
        const auto shardChanged = m_shardTimes.constFind(shardOf(link));
        if (shardChanged != m_shardTimes.cend() &&
            (isNewer(target.st_mtim, *shardChanged) || (symbolic && isNewer(target.st_ctim, *shardChanged)))) {
            if (!readsAsFont(font)) {
                unlinkAndForget(link);
                return;
            }
            changed.insert(shardOf(link));
        }
    });
    // The shard's own time marks it checked until a file changes again; set before the
    // rebuild, so the new cache records it and stays valid.
    for (const QString &shard : std::as_const(changed)) {
        const timespec now[2] = {{0, UTIME_NOW}, {0, UTIME_NOW}};
        ::utimensat(AT_FDCWD, encoded(shard).constData(), now, 0);
        m_pendingShards.insert(shard);
        const auto group = m_groups.find(groupOfShard(shard));
        if (group != m_groups.end())
            group->changed = true; // rescanned where it is: its ready cache is gone
    }
    rebuildPending();
    m_shardTimes.clear(); // needed once, at start
}
