// SPDX-License-Identifier: GPL-3.0-or-later
// Groups: each folder's fonts, up to 256 at a time, made ready in a staging folder that
// fontconfig never lists, with fontconfig's cache already written under the name the
// group will have once live; activating a whole group renames it in, deactivating one
// renames it back out, and nobody scans a font at the switch.
#include "FontActivationService.h"
#include "model/SharedPaths.h"

#include "ActivationFiles.h"
#include "FontLinkFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace ActivationFiles;

namespace {

constexpr qsizetype kGroupSize = FontActivationService::kGroupSize;

// Whether the font's file, or the link it is, changed after `when` (or can't be seen);
// `entry` is the font's entry in the staged group.
bool changedSince(const QString &font, const QString &entry, const timespec &when)
{
    struct stat file{}, link{}, staged{};
    if (::stat(encoded(font).constData(), &file) != 0 || ::lstat(encoded(font).constData(), &link) != 0)
        return true;
    // A hard link is the font's own file, whose change time each link made to it moves:
    // it is the same font while it is the same file and unwritten since.
    if (::lstat(encoded(entry).constData(), &staged) == 0 && S_ISREG(staged.st_mode))
        return !FontLinkFile::isCurrent(encoded(font), encoded(entry)) || !isNewer(when, file.st_mtim);
    return !isNewer(when, file.st_mtim) || !isNewer(when, file.st_ctim) || !isNewer(when, link.st_mtim)
           || !isNewer(when, link.st_ctim);
}

// Stable for a folder's n-th group of fonts, and a plain folder name.
QString groupId(const QString &folder, qsizetype chunk)
{
    return QString::fromLatin1(QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(16)) + u'-'
           + QString::number(chunk);
}

bool sameFonts(const QStringList &a, const QStringList &b)
{
    return a.size() == b.size() && QSet<QString>(a.cbegin(), a.cend()) == QSet<QString>(b.cbegin(), b.cend());
}

} // namespace

QString FontActivationService::groupOfShard(const QString &shard) const
{
    // groupsFolder()/ab/abcd…-0
    const QString groups = groupsFolder();
    constexpr qsizetype b = kBucketDigits;
    if (shard.size() <= groups.size() + b + 2 || !shard.startsWith(groups) || shard.at(groups.size()) != u'/'
        || shard.at(groups.size() + b + 1) != u'/')
        return {};
    const QString id = shard.mid(groups.size() + b + 2);
    return id.startsWith(QStringView(shard).mid(groups.size() + 1, b)) ? id : QString();
}

void FontActivationService::loadGroups()
{
    // Live groups are shards like any other, that never take new links. Whether one
    // changed since it was made ready is not known after a restart: its fonts then go
    // one by one, and an emptied group's folder goes with its last link.
    QSet<QString> duplicates;
    for (const QString &bucket : readFolder(groupsFolder()).folders) {
        if (bucket.size() != kBucketDigits) { // not ours to keep: nothing may be listed that the index doesn't know
            QDir(groupsFolder() + u'/' + bucket).removeRecursively();
            m_pendingShards.insert(groupsFolder());
            continue;
        }
        for (const QString &id : readFolder(groupsFolder() + u'/' + bucket).folders) {
            const QString folder = liveGroupPath(id);
            const FolderEntries entries = readFolder(folder);
            if (entries.linkNames.isEmpty() || bucketOf(id) != groupsFolder() + u'/' + bucket) {
                QDir(groupsFolder() + u'/' + bucket + u'/' + id).removeRecursively(); // emptied, then killed before it went
                m_pendingShards.insert(groupsFolder() + u'/' + bucket);
                continue;
            }
            m_shardSize.insert(folder, 0);
            indexLinks(folder, entries, duplicates);
            m_noNewLinks.insert(folder);
            m_groups.insert(id, Group{.fonts = entries.targets, .live = true, .changed = true});
        }
    }
    rebuildShards(duplicates);
    if (m_stagingFolder.isEmpty())
        return;
    // A group whose making was cut short has no cache to trust: made again later.
    const QString building = m_stagingFolder + u"/building"_s;
    for (const QString &id : QDir(building).entryList(QDir::Files)) {
        m_cutShortGroups.append(stagedGroupPath(id)); // its cache may be left locked
        QDir(stagedGroupPath(id)).removeRecursively();
        QFile::remove(building + u'/' + id);
    }
    for (const QString &bucket : readFolder(m_stagingFolder + u"/g"_s).folders) {
        if (bucket.size() != kBucketDigits) {
            QDir(m_stagingFolder + u"/g/"_s + bucket).removeRecursively();
            continue;
        }
        for (const QString &id : readFolder(m_stagingFolder + u"/g/"_s + bucket).folders) {
            const FolderEntries entries = readFolder(stagedGroupPath(id));
            if (m_groups.contains(id) || entries.targets.isEmpty() || !id.startsWith(bucket)) {
                QDir(m_stagingFolder + u"/g/"_s + bucket + u'/' + id).removeRecursively();
                continue;
            }
            QStringList fonts;
            fonts.reserve(entries.targets.size());
            for (const QString &font : entries.targets) {
                fonts.append(SharedPaths::share(font)); // the links' and the catalogue's copy
                m_groupOfFont.insert(fonts.last(), id);
            }
            m_groups.insert(id, Group{.fonts = fonts, .staged = entries.changed, .ready = true});
        }
    }
}

qsizetype FontActivationService::readyFonts()
{
    const QMutexLocker lock(&m_mutex);
    qsizetype count = 0;
    for (const Group &group : std::as_const(m_groups))
        count += group.ready && !group.live ? group.fonts.size() : 0;
    return count;
}

void FontActivationService::prepareActivation(const QList<QStringList> &fontsByFolder, const std::function<bool()> &stop)
{
    {
        const QMutexLocker lock(&m_mutex);
        if (!ensureReady() || m_stagingFolder.isEmpty())
            return;
    }
    const QString building = m_stagingFolder + u"/building"_s;
    if (!QDir().mkpath(m_stagingFolder + u"/g"_s) || !QDir().mkpath(building))
        return;
    QSet<QString> wanted;
    for (QStringList fonts : fontsByFolder) {
        if (fonts.isEmpty())
            continue;
        fonts.sort();
        const QString folder = fonts.constFirst().section(u'/', 0, -2);
        for (qsizetype start = 0; start < fonts.size(); start += kGroupSize) {
            if (stop())
                return;
            const QString id = groupId(folder, start / kGroupSize);
            QStringList members = fonts.mid(start, kGroupSize);
            // Only regular files: fontconfig opens each without O_NONBLOCK, and a FIFO
            // (or a device) in a font's name would hold it, and this job, for good. Such
            // a file is left to its own activation, which turns it down with a reason.
            members.removeIf([](const QString &font) {
                struct stat info{};
                return ::stat(encoded(font).constData(), &info) != 0 || !S_ISREG(info.st_mode);
            });
            if (members.isEmpty())
                continue;
            wanted.insert(id);
            {
                const QMutexLocker lock(&m_mutex);
                const auto known = m_groups.constFind(id);
                if (known != m_groups.cend()
                    && (known->live
                        || (known->ready && sameFonts(known->fonts, members)
                            && std::none_of(members.cbegin(), members.cend(),
                                            [&](const QString &font) {
                                                return changedSince(font, stagedGroupPath(id) + u'/' + linkNameFor(font),
                                                                    known->staged);
                                            }))))
                    continue;
                if (known != m_groups.cend()) {
                    for (const QString &font : known->fonts) {
                        if (m_groupOfFont.value(font) == id)
                            m_groupOfFont.remove(font);
                    }
                    m_groups.remove(id); // nobody renames it in while it is made again
                }
            }
            // Outside the lock: fontconfig reads the fonts here, and activation goes on.
            const QString staged = stagedGroupPath(id), marker = building + u'/' + id;
            if (QFile made(marker); !made.open(QIODevice::WriteOnly))
                return; // the staging folder can't be written: nothing is made ready
            QDir(staged).removeRecursively();
            QDir().mkpath(staged);
            // Never a copy here: every font of every folder is made ready. A font that
            // would need one to be seen by sandboxed programs is left to its own activation.
            const bool copiesAllowed = m_copiesAllowed;
            members.removeIf([&](const QString &font) {
                const FontLinkFile::Made made =
                    FontLinkFile::make(encoded(font), encoded(staged + u'/' + linkNameFor(font)), false);
                if (made.ok && made.kind == FontLinkFile::Kind::Symbolic && copiesAllowed)
                    FontLinkFile::remove(encoded(staged + u'/' + linkNameFor(font)));
                return !made.ok || (made.kind == FontLinkFile::Kind::Symbolic && copiesAllowed);
            });
            std::optional<QSet<QString>> listed = m_fontconfig.stage(staged, liveGroupPath(id));
            // A font fontconfig turns down leaves the group, and is linked on its own when asked.
            QStringList accepted;
            for (const QString &font : members) {
                if (listed && listed->contains(linkNameFor(font)))
                    accepted.append(font);
                else
                    FontLinkFile::remove(encoded(staged + u'/' + linkNameFor(font)));
            }
            if (listed && !accepted.isEmpty() && accepted.size() != members.size())
                listed = m_fontconfig.stage(staged, liveGroupPath(id));
            struct stat info{};
            if (!listed || accepted.isEmpty() || ::stat(encoded(staged).constData(), &info) != 0) {
                QDir(staged).removeRecursively();
                QFile::remove(marker);
                continue;
            }
            QFile::remove(marker);
            const QMutexLocker lock(&m_mutex);
            m_groups.insert(id, Group{.fonts = accepted, .staged = info.st_mtim, .ready = true});
            for (const QString &font : accepted)
                m_groupOfFont.insert(font, id);
        }
    }
    // Groups of folders that are gone, or that have other fonts now, go too: only after
    // a whole pass, never one that was stopped.
    if (stop())
        return;
    const QMutexLocker lock(&m_mutex);
    for (auto it = m_groups.begin(); it != m_groups.end();) {
        if (it->live || wanted.contains(it.key())) {
            ++it;
            continue;
        }
        QDir(stagedGroupPath(it.key())).removeRecursively();
        for (const QString &font : it->fonts) {
            if (m_groupOfFont.value(font) == it.key())
                m_groupOfFont.remove(font);
        }
        it = m_groups.erase(it);
    }
}

bool FontActivationService::askGroupIn(const QString &font)
{
    const auto id = m_groupOfFont.constFind(font);
    if (id == m_groupOfFont.cend())
        return false;
    Group &group = m_groups[*id];
    if (!group.ready || group.live)
        return false;
    // Changed since it was made ready (the file, or the link it is): the cache describes
    // the file as it was.
    if (changedSince(font, stagedGroupPath(*id) + u'/' + linkNameFor(font), group.staged)) {
        group.ready = false;
        return false;
    }
    QSet<QString> &asked = m_askedIn[*id];
    asked.insert(font);
    if (asked.size() == group.fonts.size()
        && std::none_of(group.fonts.cbegin(), group.fonts.cend(), [this](const QString &f) { return m_links.containsFont(f); })
        && moveGroupIn(*id))
        m_askedIn.remove(*id);
    return true; // linked with its group, or on its own once the batch ends
}

bool FontActivationService::askGroupOut(const QString &font, const QString &link)
{
    const QString id = groupOfShard(shardOf(link));
    const auto group = m_groups.find(id);
    if (id.isEmpty() || group == m_groups.end() || !group->live || group->changed)
        return false;
    QSet<QString> &asked = m_askedOut[id];
    asked.insert(font);
    if (asked.size() == group->fonts.size() && moveGroupOut(id))
        m_askedOut.remove(id);
    return true;
}

bool FontActivationService::isAskedIn(const QString &font) const
{
    const auto id = m_groupOfFont.constFind(font);
    if (id == m_groupOfFont.cend())
        return false;
    const auto asked = m_askedIn.constFind(*id);
    return asked != m_askedIn.cend() && asked->contains(font);
}

bool FontActivationService::moveGroupIn(const QString &id)
{
    Group &group = m_groups[id];
    const QString live = liveGroupPath(id);
    const QString bucket = bucketOf(id);
    if (!QFileInfo::exists(bucket)) {
        if (!QFileInfo::exists(groupsFolder()))
            m_pendingShards.insert(m_linkFolder); // lists one more folder
        if (!QDir().mkpath(bucket))
            return false;
        m_pendingShards.insert(groupsFolder());
    }
    if (::rename(encoded(stagedGroupPath(id)).constData(), encoded(live).constData()) != 0) {
        group.ready = false; // another file system, or gone: its fonts go one by one
        return false;
    }
    group.live = true;
    group.ready = false;
    group.changed = false;
    m_shardSize.insert(live, group.fonts.size());
    m_noNewLinks.insert(live);
    for (const QString &font : std::as_const(group.fonts)) {
        const QString link = live + u'/' + linkNameFor(font);
        m_links.insert(font, link);
    }
    m_pendingShards.insert(bucket); // lists one more folder; the group's own cache is ready
    return true;
}

bool FontActivationService::moveGroupOut(const QString &id)
{
    Group &group = m_groups[id];
    const QString live = liveGroupPath(id);
    if (m_stagingFolder.isEmpty()
        || ::rename(encoded(live).constData(), encoded(stagedGroupPath(id)).constData()) != 0)
        return false;
    for (const QString &font : std::as_const(group.fonts))
        m_links.removeFont(font);
    group.live = false;
    group.ready = true; // its folder kept its time, so its cache is valid when it comes back
    m_shardSize.remove(live);
    m_noNewLinks.remove(live);
    m_pendingShards.remove(live);
    m_pendingShards.insert(bucketOf(id)); // emptied, it goes at the rebuild
    return true;
}

void FontActivationService::settleGroups()
{
    QStringList loose;
    for (const QSet<QString> &asked : std::as_const(m_askedIn)) {
        for (const QString &font : asked) {
            if (!m_links.containsFont(font))
                loose.append(font);
        }
    }
    m_askedIn.clear();
    linkLoose(loose); // fontconfig read them when they were made ready; the rebuild judges again
    for (const QSet<QString> &asked : std::as_const(m_askedOut)) {
        for (const QString &font : asked) {
            const QString link = m_links.linkOf(font);
            if (!link.isEmpty())
                unlinkAndForget(link);
        }
    }
    m_askedOut.clear();
}

void FontActivationService::removeEmptyGroups()
{
    // A live group whose last link went: its folder goes too (fontconfig would keep
    // reading it), and the group is made ready again after the next scan.
    const QSet<QString> pending = m_pendingShards;
    for (const QString &shard : pending) {
        const QString id = groupOfShard(shard);
        if (id.isEmpty() || m_shardSize.value(shard) != 0 || ::rmdir(encoded(shard).constData()) != 0)
            continue;
        m_shardSize.remove(shard);
        m_noNewLinks.remove(shard);
        m_pendingShards.remove(shard);
        m_pendingShards.insert(bucketOf(id));
        const auto group = m_groups.constFind(id);
        if (group != m_groups.cend()) {
            for (const QString &font : group->fonts) {
                if (m_groupOfFont.value(font) == id)
                    m_groupOfFont.remove(font);
            }
            m_groups.erase(group);
        }
    }
    // A bucket that lost its last group goes too (rmdir refuses one that has any), and
    // then the groups' folder if it is empty: nothing is left for programs to read.
    bool bucketGone = false;
    for (const QString &shard : QSet<QString>(m_pendingShards)) {
        if (shard.size() == groupsFolder().size() + 1 + kBucketDigits && shard.startsWith(groupsFolder() + u'/')
            && ::rmdir(encoded(shard).constData()) == 0) {
            m_pendingShards.remove(shard);
            bucketGone = true;
        }
    }
    if (bucketGone) {
        if (::rmdir(encoded(groupsFolder()).constData()) == 0)
            m_pendingShards.insert(m_linkFolder);
        else
            m_pendingShards.insert(groupsFolder());
    }
}
