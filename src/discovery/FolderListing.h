// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FontNode.h"

#include <QString>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

// What a folder was when it was listed: which folder, and when what it holds last
// changed. Adding, removing or renaming an entry moves the modification time; a
// permission or an attribute of the folder moves the change time. A listing taken while
// the modification time was recent is not trusted: on a file system with coarse times
// (FAT's two seconds) a second change within the same tick would leave it as it was.
struct FolderStamp
{
    quint64 device = 0;
    quint64 inode = 0;
    qint64 modifiedNs = 0;
    qint64 changedNs = 0;
    bool trusted = false;

    static FolderStamp of(const QString &path); // untrusted and zero when it can't be read
    static FolderStamp fromDescriptor(int fd);
    // The same folder, not changed since: its old listing still holds.
    bool stillHolds(const FolderStamp &now) const
    {
        return trusted && device == now.device && inode == now.inode && modifiedNs == now.modifiedNs &&
               changedNs == now.changedNs;
    }
};

// One folder's entries as the scanner wants them, in listing order: subfolders and
// font files, raw names kept in one buffer. Hidden names are left out.
struct FolderListing
{
    struct Entry
    {
        quint32 offset = 0;
        quint32 length = 0;
        bool isFolder = false;
    };
    QString path;
    bool readable = false;
    FolderStamp stamp; // taken before the entries were read
    std::string names;
    std::vector<Entry> entries;

    static FolderListing read(const QString &path);
    // The path with a trailing slash, to which the names are appended.
    QString prefix() const;
    // The entry as a node; none when its name is not valid UTF-8.
    std::optional<FontNode> node(const QString &prefix, const Entry &entry) const;
};

// Lists folders ahead of the scan on a helper thread, in the order the scan will ask
// for them (depth first, listing order), so reading directories in the kernel runs
// beside building the caches. Bounded, and stopped and joined on destruction.
class ListingPrefetcher
{
public:
    explicit ListingPrefetcher(const QString &root);
    ~ListingPrefetcher();
    ListingPrefetcher(const ListingPrefetcher &) = delete;
    ListingPrefetcher &operator=(const ListingPrefetcher &) = delete;

    // The listing of `path`. Listings of folders the scan skipped (already scanned)
    // are dropped on the way; none when the helper never lists `path`.
    std::optional<FolderListing> take(const QString &path);

private:
    void run(QString root);

    void publish(std::vector<FolderListing> &batch);

    // Listings cross threads in batches: one hand-over per folder would cost a
    // thread wake-up per folder whenever the scan catches up.
    static constexpr size_t kBatch = 32;
    static constexpr size_t kMaxQueued = 512;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<FolderListing> m_queue;
    std::deque<FolderListing> m_taken; // the scan's side only
    bool m_done = false;
    std::atomic_bool m_stop = false;
    std::thread m_thread;
};
