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
