// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CancellationToken.h"
#include "model/FontNode.h"
#include "FolderListing.h"
#include "NameCollator.h"

#include <QCollator>
#include <QHash>
#include <QList>
#include <QLocale>
#include <QSet>
#include <QString>

#include <memory>
#include <optional>
#include <span>
#include <vector>

// Walks the source folders once per library refresh and answers every later
// question about them (children, fonts below, holds fonts, exists) by lookup.
// Filled by one job, then frozen and only read; a refresh builds a new one.
//
// Fonts are stored once, in depth-first order: the fonts below any folder are one
// contiguous run of that pool, so a folder's font list costs two integers.
//
// A refresh need not read every folder again: given the previous scan, a folder whose
// stamp still holds (the same folder, its times unmoved) takes its entries from there,
// and only the folders that changed are read.
class FileSystemService
{
public:
    struct ScanResult
    {
        std::span<const FontNode> allFonts; // valid until the next scan on this service
        bool containsFonts = false;
    };

    // Ahead: a helper thread reads folders ahead of the scan. Inline: every folder is
    // read at the moment the scan reaches it (tests that change the tree mid-scan).
    enum class Listing { Ahead, Inline };

    explicit FileSystemService(CancellationToken cancellation = {}, const QLocale &locale = QLocale(),
                               Listing listing = Listing::Ahead);

    // Scans `path` and every folder below it, once per service. Returns at once
    // from the cache when `path` was scanned already.
    ScanResult deepScan(const QString &path);
    // Every folder below `path` that holds fonts, read from the cache only.
    QList<FontNode> allFolders(const QString &path) const;
    // Notes `path` as existing when a file or folder is there (links followed).
    void recordExistence(const QString &path);
    // True when the root was not yet in the set.
    bool insertPreScannedRoot(const QString &path);
    // Before the first deepScan: folders unchanged since `previous` listed them are taken
    // from it. Let go of at freeze().
    void reuseUnchanged(std::shared_ptr<const FileSystemService> previous);
    // How many folders this service read from the disk (the others it reused).
    qsizetype foldersRead() const { return m_foldersRead; }
    void freeze();

    // Readers: the children cache (subfolders holding fonts, then fonts, each sorted
    // by name), the all-fonts cache, the holds-fonts cache and the existing paths.
    bool hasChildrenEntry(const QString &path) const { return m_folders.contains(path); }
    QList<FontNode> children(const QString &path) const;
    std::span<const FontNode> allFonts(const QString &path) const;
    std::optional<bool> containsFonts(const QString &path) const;
    bool exists(const QString &path) const;

    bool isFrozen() const { return m_frozen; }
    const QSet<QString> &visitedDirectories() const { return m_visitedDirectories; }
    const QSet<QString> &preScannedRoots() const { return m_preScannedRoots; }
    qsizetype fontCount() const { return static_cast<qsizetype>(m_fontPool.size()); }
    qsizetype folderCount() const { return m_folders.size(); }

private:
    struct FolderEntry
    {
        QList<FontNode> children;
        // Every subfolder, fonts or not, sorted: one that gains fonts is found again.
        QList<FontNode> subfolders;
        quint32 fontsBegin = 0;
        quint32 fontsEnd = 0;
        bool listed = false; // false: the folder could not be read
        FolderStamp stamp;
    };
    struct Range
    {
        quint32 begin = 0;
        quint32 end = 0;
        bool cancelled = false;
    };

    Range scanFolder(const QString &path);
    Range appendCachedFonts(const FolderEntry &entry);
    Range subfolderRange(const QString &path);
    // The previous scan's entry for `path` when it still holds, else null.
    const FolderEntry *unchangedEntry(const QString &path) const;
    Range reuseFolder(const QString &path, const FolderEntry &previous);
    FolderListing listFolder(const QString &path);
    void ensureWritable(const char *operation) const;

    CancellationToken m_cancellation;
    NameCollator m_collator;
    Listing m_listing;
    std::unique_ptr<ListingPrefetcher> m_prefetcher; // only while deepScan runs
    std::shared_ptr<const FileSystemService> m_previous; // only until freeze()
    qsizetype m_foldersRead = 0;
    bool m_frozen = false;
    // Paths recorded one by one (collection members). Scanned folders and fonts
    // are known to exist through the caches, which saves a set of every path.
    QSet<QString> m_existingPaths;
    QSet<QString> m_visitedDirectories;
    QSet<QString> m_preScannedRoots;
    QHash<QString, FolderEntry> m_folders;
    std::vector<FontNode> m_fontPool;
};
