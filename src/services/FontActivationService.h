// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FontActivating.h"
#include "FontconfigCache.h"
#include "LinkIndex.h"

#include <QElapsedTimer>
#include <QHash>
#include <QMutex>
#include <QSet>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <optional>

#include <ctime>


// Activates fonts for every application through fontconfig: an active font has an
// entry in Morvane's own folder under the user's font folder ($XDG_DATA_HOME/fonts/
// Morvane), and deactivating removes it. The entry is the file itself where that costs
// no space (a hard link, a clone), so sandboxed programs see it too; else a symbolic
// link, or a copy when allowed (FontLinkFile, FontActivationLinks.cpp).
//
// fontconfig keeps one cache per folder and rescans a whole folder when it changes,
// so links live in small shard folders of at most kShardCapacity links, made on
// demand inside 256 pre-created folders (00 … ff): one toggle rescans one small
// shard however many fonts are active, and a big batch fills fresh shards, so it
// rescans little beyond its own fonts. Within a batch each font is checked on its
// own (FreeType opens it, as fontconfig will), and the touched shards' caches are
// rebuilt at its end, and about once a second while it runs. A font counts as active
// once fontconfig's rebuilt cache lists it; one it turns down loses its link again.
// An index of our links (read from disk on first use) finds a font's link.
//
// Whole folders are made ready ahead of time, where nobody waits: each folder's fonts,
// up to 256 at a time, get a "group" folder of links in a staging folder beside ours that
// fontconfig never lists (its name starts with a dot), and fontconfig's cache of it,
// moved to the name the group will have once live. Activating every font of a group then
// renames the group into our folder: the folder keeps its time, the cache is valid, and
// no program scans a font. Deactivating a whole group renames it back. A group only
// partly asked for is linked font by font, as any other.
// Safe to call from any thread; calls are serialised.
class FontActivationService : public FontActivating
{
public:
    static constexpr qsizetype kShardCapacity = 16;
    // Fonts of a folder made ready together. Every program reads each of our folders at
    // its start, so a group is large; a font switched on or off alone in a wholly active
    // group has the rest of its group read again, at most this many fonts.
    static constexpr qsizetype kGroupSize = 256;

    // `linkFolder` overrides where the links live (tests); the application passes none.
    explicit FontActivationService(std::optional<QString> linkFolder = std::nullopt);
    ~FontActivationService() override;
    FontActivationService(const FontActivationService &) = delete;
    FontActivationService &operator=(const FontActivationService &) = delete;

    bool activateFont(const QString &path) override;
    bool deactivateFont(const QString &path) override;
    QList<bool> activateFonts(const QStringList &paths) override;
    QList<bool> deactivateFonts(const QStringList &paths) override;
    void beginBatch() override;
    QStringList finishBatch() override;
    void repairActivations() override;
    QSet<QString> recordedActivations() override;
    void removeActivationsExcept(const QSet<QString> &keep) override;
    QStringList takeSystemFailures(QString *reason) override;
    QHash<QString, QString> takeFailureReasons() override;
    void prepareActivation(const QList<QStringList> &fontsByFolder, const std::function<bool()> &stop) override;

    void setCopiesAllowed(bool allowed) override;
    QStringList refreshLinks() override;
    // What copying every font that only a symbolic link reaches now would take.
    qint64 bytesToCopy() override;

    QString linkFolder() const { return m_linkFolder; }
    // $XDG_DATA_HOME/fonts/Morvane, where the application's links live.
    static QString defaultLinkFolder();
    // The link's file name for a font: stable, and unique per font path.
    static QString linkNameFor(const QString &fontPath);
    // Where the active font's link is; none when the font is not active.
    std::optional<QString> linkPathFor(const QString &fontPath);
    // Every link in our folder, link path to the path it points at (dangling ones too).
    QHash<QString, QString> links();
    // Removes links (a start-up sweep of ones nothing accounts for) and rebuilds their shards.
    void removeLinks(const QStringList &linkPaths);
    // Where groups are made ready: beside the link folder, the same length, hidden.
    QString stagingFolder() const { return m_stagingFolder; }
    // Fonts fontconfig has read while rescanning folders since the start (tests, benchmarks).
    int fontsScanned() const { return m_fontconfig.fontsScanned(); }
    // Fonts in groups ready to be renamed in.
    qsizetype readyFonts();
    // Whether fontconfig reads this folder of ours from its cache, as every program will.
    bool hasValidCache(const QString &folder) { return m_fontconfig.hasValidCache(folder); }

private:
    bool ensureReady();
    // One pass over a folder of ours: its subfolders, its links with where they point,
    // and when the folder last changed.
    struct FolderEntries
    {
        QStringList folders;
        QStringList linkNames;
        QStringList targets;
        QStringList strays; // file entries and records without each other
        timespec changed{};
    };
    static FolderEntries readFolder(const QString &folder);
    void loadIndex();
    void indexLinks(const QString &folder, const FolderEntries &entries, QSet<QString> &duplicateShards);
    void forget(QString linkPath); // by value: callers may pass the index's own string
    void unlinkAndForget(QString linkPath);
    // Shards for `count` new links (see placement in the .cpp).
    QStringList placeNewLinks(qsizetype count);
    QString createShard();
    static QString shardOf(const QString &linkPath);
    // Rescans a shard, writes its cache and returns the files fontconfig listed.
    QSet<QString> rebuildShard(const QString &shard);
    // The same for several shards at once, side by side.
    QHash<QString, QSet<QString>> rebuildShards(const QSet<QString> &shards);
    // Rebuilds the shards changed since the last time; links fontconfig does not list
    // are taken back and their fonts remembered as turned down.
    void rebuildPending();
    void removeStaleCacheLocks();
    // Takes back links whose file is no longer a regular file (a FIFO or device put in
    // its place would block fontconfig's scan of the shard, and every other program's).
    void setAsideSpecialFiles(const QSet<QString> &shards);
    void failForSystem(const QString &path, const QString &reason);
    // Makes a font's entry again as things stand (its file replaced, copies allowed or
    // not); true when its shard changed.
    bool remake(const QString &font, const QString &link);
    bool markChanged(const QString &link);
    void failActivation(const QString &path, const QString &reason, const QString &inWords = {});
    // Links each font in the shards placement chooses.
    void linkLoose(const QStringList &fonts);

    // Groups (FontActivationGroups.cpp).
    struct Group
    {
        QStringList fonts;
        timespec staged{};  // when its folder last changed in staging
        bool live = false;  // in our folder
        bool ready = false; // staged, its cache in place
        bool changed = false; // live, and a link added or taken since: a shard like any other
    };
    // Live groups sit in 16 buckets (by their id's first digit), made with their
    // first group and removed with their last: a group coming or going rescans its
    // bucket's short list of folders, not one of every active group.
    QString groupsFolder() const { return m_linkFolder + QStringLiteral("/g"); }
    static constexpr qsizetype kBucketDigits = 1;
    QString bucketOf(const QString &id) const { return groupsFolder() + u'/' + id.left(kBucketDigits); }
    QString liveGroupPath(const QString &id) const { return bucketOf(id) + u'/' + id; }
    QString stagedGroupPath(const QString &id) const
    {
        return m_stagingFolder + QStringLiteral("/g/") + id.left(kBucketDigits) + u'/' + id;
    }
    QString groupOfShard(const QString &shard) const;
    void loadGroups();
    // A font asked for whose whole group is ready: noted, and the group renamed in once
    // all its fonts are asked for. False when the font has to be linked on its own.
    bool askGroupIn(const QString &font);
    // An active font whose link is in an unchanged live group: noted, and the group
    // renamed out once all its fonts are asked for.
    bool askGroupOut(const QString &font, const QString &link);
    bool moveGroupIn(const QString &id);
    bool moveGroupOut(const QString &id);
    // Fonts of groups only partly asked for are linked or unlinked one by one.
    void settleGroups();
    bool isAskedIn(const QString &font) const;
    void removeEmptyGroups();
    void removeEmptyShards();

    QString m_linkFolder;
    QString m_stagingFolder; // empty: no staging where the link folder is
    FontconfigCache m_fontconfig;
    bool m_ready = false;
    QStringList m_tops;                   // 00 … ff
    QSet<QString> m_topSet;
    QHash<QString, int> m_shardsInTop;    // top folder -> shards made in it
    LinkIndex m_links;                    // font path <-> link path
    QHash<QString, timespec> m_shardTimes; // shard -> when it last changed, as read at start
    QHash<QString, qsizetype> m_shardSize; // every folder holding links, new shards included
    QSet<QString> m_pendingShards;         // changed, cache not yet rebuilt
    QStringList m_turnedDown;              // fonts fontconfig refused since the batch began
    QStringList m_systemFailures;          // fonts that failed for a reason not their own
    QHash<QString, QString> m_failureReasons; // why each font failed, in the window's words
    QString m_systemFailureReason;
    bool m_inBatch = false;
    std::atomic<bool> m_copiesAllowed = false; // read by groups being made ready, outside the lock
    QElapsedTimer m_sinceRebuild;
    mutable QMutex m_mutex;
    QThreadPool m_rebuilders; // our own, so a batch job on the global pool can't starve it
    QHash<QString, Group> m_groups;       // by group id (its folder's name)
    QHash<QString, QString> m_groupOfFont; // font path -> group id
    QHash<QString, QSet<QString>> m_askedIn;  // group -> its fonts asked for in this batch
    QHash<QString, QSet<QString>> m_askedOut; // group -> its fonts asked off in this batch
    QSet<QString> m_noNewLinks;           // top folders and live groups: placement skips them
    QStringList m_cutShortGroups;         // staged folders whose making a kill cut short
};
