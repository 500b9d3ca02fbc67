// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileSystemService.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>

namespace {

QString withoutTrailingSlash(QString path)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

} // namespace

FileSystemService::FileSystemService(CancellationToken cancellation, const QLocale &locale, Listing listing)
    : m_cancellation(std::move(cancellation))
    , m_collator(locale)
    , m_listing(listing)
{
}

void FileSystemService::ensureWritable(const char *operation) const
{
    if (m_frozen) {
        // A programming error: a frozen service is shared read-only with the UI.
        qFatal("FileSystemService: %s on a frozen service", operation);
    }
}

FileSystemService::ScanResult FileSystemService::deepScan(const QString &path)
{
    const QString cleanPath = withoutTrailingSlash(path);
    const bool cached = m_folders.contains(cleanPath);
    if (!cached)
        ensureWritable("deepScan");
    // Reading ahead pays for a tree read whole (a new source), not for one mostly reused.
    const bool mostlyReused = m_previous && m_previous->m_folders.contains(cleanPath);
    if (!cached && m_listing == Listing::Ahead && !mostlyReused)
        m_prefetcher = std::make_unique<ListingPrefetcher>(cleanPath);
    const Range range = scanFolder(cleanPath);
    m_prefetcher.reset();
    const std::span<const FontNode> fonts(m_fontPool.data() + range.begin, range.end - range.begin);
    return {fonts, !fonts.empty()};
}

void FileSystemService::reuseUnchanged(std::shared_ptr<const FileSystemService> previous)
{
    ensureWritable("reuseUnchanged");
    m_previous = std::move(previous);
}

FileSystemService::Range FileSystemService::appendCachedFonts(const FolderEntry &entry)
{
    // Already scanned under another root: copy its run so the caller's run stays
    // contiguous. Reserve first, since we copy out of the vector we append to.
    const auto begin = static_cast<quint32>(m_fontPool.size());
    m_fontPool.reserve(m_fontPool.size() + (entry.fontsEnd - entry.fontsBegin));
    for (quint32 i = entry.fontsBegin; i < entry.fontsEnd; ++i)
        m_fontPool.push_back(m_fontPool[i]);
    return {begin, static_cast<quint32>(m_fontPool.size()), false};
}

FileSystemService::Range FileSystemService::subfolderRange(const QString &path)
{
    const auto cached = m_folders.constFind(path);
    return cached != m_folders.cend() ? appendCachedFonts(*cached) : scanFolder(path);
}

const FileSystemService::FolderEntry *FileSystemService::unchangedEntry(const QString &path) const
{
    if (!m_previous)
        return nullptr;
    const auto entry = m_previous->m_folders.constFind(path);
    // One that could not be read is read again: it may be back.
    if (entry == m_previous->m_folders.cend() || !entry->listed || !entry->stamp.trusted)
        return nullptr;
    return entry->stamp.stillHolds(FolderStamp::of(path)) ? &*entry : nullptr;
}

FileSystemService::Range FileSystemService::scanFolder(const QString &path)
{
    const auto cached = m_folders.constFind(path);
    if (cached != m_folders.cend())
        return {cached->fontsBegin, cached->fontsEnd, false};

    const auto start = static_cast<quint32>(m_fontPool.size());
    if (m_cancellation.isCancelled())
        return {start, start, true};
    if (m_visitedDirectories.contains(path))
        return {start, start, false};
    m_visitedDirectories.insert(path);
    if (const FolderEntry *previous = unchangedEntry(path))
        return reuseFolder(path, *previous);

    const FolderListing listing = listFolder(path);
    if (!listing.readable) {
        // Unreadable: remembered as empty and fontless, siblings go on. It may
        // still exist (no permission) or be gone (vanished mid-scan).
        struct stat info{};
        if (::stat(QFile::encodeName(path).constData(), &info) == 0)
            m_existingPaths.insert(path);
        m_folders.insert(path, FolderEntry{{}, {}, start, start, false, {}});
        return {start, start, false};
    }

    std::vector<FontNode> folders;
    std::vector<FontNode> subfolders;
    std::vector<FontNode> fonts;
    const QString prefix = listing.prefix();
    for (const FolderListing::Entry &entry : listing.entries) {
        if (m_cancellation.isCancelled())
            return {start, start, true};
        std::optional<FontNode> node = listing.node(prefix, entry);
        if (!node)
            continue;
        if (!entry.isFolder) {
            m_fontPool.push_back(*node);
            fonts.push_back(std::move(*node));
            continue;
        }
        const Range sub = subfolderRange(node->path());
        if (sub.end > sub.begin)
            folders.push_back(*node);
        subfolders.push_back(std::move(*node));
    }
    // A cancellation inside the last subfolder must not leave a partial run cached.
    if (m_cancellation.isCancelled())
        return {start, start, true};

    const auto nameOf = [](const FontNode &node) { return node.name(); };
    m_collator.stableSort(folders, nameOf);
    m_collator.stableSort(subfolders, nameOf);
    m_collator.stableSort(fonts, nameOf);
    FolderEntry folderEntry;
    folderEntry.children.reserve(static_cast<qsizetype>(folders.size() + fonts.size()));
    for (FontNode &node : folders)
        folderEntry.children.append(std::move(node));
    for (FontNode &node : fonts)
        folderEntry.children.append(std::move(node));
    folderEntry.subfolders = QList<FontNode>(std::make_move_iterator(subfolders.begin()),
                                             std::make_move_iterator(subfolders.end()));
    folderEntry.fontsBegin = start;
    folderEntry.fontsEnd = static_cast<quint32>(m_fontPool.size());
    folderEntry.listed = true;
    folderEntry.stamp = listing.stamp;
    m_folders.emplace(path, std::move(folderEntry));
    return {start, static_cast<quint32>(m_fontPool.size()), false};
}

FileSystemService::Range FileSystemService::reuseFolder(const QString &path, const FolderEntry &previous)
{
    // Its own entries are as they were; a subfolder may have changed all the same (a
    // font added inside moves that folder's time, not this one's), so each is looked
    // at in turn, and which of them hold fonts is decided afresh.
    const auto start = static_cast<quint32>(m_fontPool.size());
    FolderEntry entry;
    entry.children.reserve(previous.children.size());
    for (const FontNode &sub : previous.subfolders) {
        const Range range = subfolderRange(sub.path());
        if (m_cancellation.isCancelled())
            return {start, start, true};
        if (range.end > range.begin)
            entry.children.append(sub);
    }
    for (const FontNode &child : previous.children) {
        if (child.isFont()) {
            m_fontPool.push_back(child);
            entry.children.append(child);
        }
    }
    entry.subfolders = previous.subfolders;
    entry.fontsBegin = start;
    entry.fontsEnd = static_cast<quint32>(m_fontPool.size());
    entry.listed = true;
    entry.stamp = previous.stamp;
    m_folders.emplace(path, std::move(entry));
    return {start, static_cast<quint32>(m_fontPool.size()), false};
}

FolderListing FileSystemService::listFolder(const QString &path)
{
    ++m_foldersRead;
    if (m_prefetcher) {
        if (std::optional<FolderListing> listing = m_prefetcher->take(path))
            return std::move(*listing);
    }
    return FolderListing::read(path);
}

QList<FontNode> FileSystemService::allFolders(const QString &path) const
{
    QList<FontNode> result;
    QList<QString> stack{withoutTrailingSlash(path)};
    while (!stack.isEmpty()) {
        const QString current = stack.takeLast();
        const auto entry = m_folders.constFind(current);
        if (entry == m_folders.cend())
            continue;
        for (const FontNode &child : entry->children) {
            if (!child.isDirectory())
                continue;
            result.append(child);
            stack.append(child.path());
        }
    }
    return result;
}

void FileSystemService::recordExistence(const QString &path)
{
    ensureWritable("recordExistence");
    struct stat info{};
    if (::stat(QFile::encodeName(path).constData(), &info) == 0)
        m_existingPaths.insert(path);
}

bool FileSystemService::insertPreScannedRoot(const QString &path)
{
    ensureWritable("insertPreScannedRoot");
    if (m_preScannedRoots.contains(path))
        return false;
    m_preScannedRoots.insert(path);
    return true;
}

void FileSystemService::freeze()
{
    m_previous.reset(); // the old scan is freed once the store lets go of it
    m_fontPool.shrink_to_fit();
    m_frozen = true;
}

QList<FontNode> FileSystemService::children(const QString &path) const
{
    return m_folders.value(path).children;
}

std::span<const FontNode> FileSystemService::allFonts(const QString &path) const
{
    const auto entry = m_folders.constFind(path);
    if (entry == m_folders.cend())
        return {};
    return {m_fontPool.data() + entry->fontsBegin, entry->fontsEnd - entry->fontsBegin};
}

std::optional<bool> FileSystemService::containsFonts(const QString &path) const
{
    const auto entry = m_folders.constFind(path);
    if (entry == m_folders.cend())
        return std::nullopt;
    return entry->fontsEnd > entry->fontsBegin;
}

bool FileSystemService::exists(const QString &path) const
{
    if (m_existingPaths.contains(path))
        return true;
    const auto folder = m_folders.constFind(path);
    if (folder != m_folders.cend())
        return folder->listed;
    // A font the scan met is a font child of its scanned parent folder.
    const qsizetype slash = path.lastIndexOf(u'/');
    if (slash < 0 || !isFontFileName(QStringView(path).sliced(slash + 1)))
        return false;
    const auto parent = m_folders.constFind(slash == 0 ? QStringLiteral("/") : path.left(slash));
    if (parent == m_folders.cend())
        return false;
    // Fonts follow the subfolders, in the collator's order: a binary search, then the
    // names that compare equal (case aside), so a folder of 10,000 fonts costs a few
    // comparisons, not 10,000.
    const QList<FontNode> &children = parent->children;
    const auto fonts = std::partition_point(children.cbegin(), children.cend(),
                                            [](const FontNode &child) { return !child.isFont(); });
    const QStringView name = QStringView(path).sliced(slash + 1);
    auto found = std::lower_bound(fonts, children.cend(), name, [this](const FontNode &child, QStringView wanted) {
        return m_collator.compare(child.name(), wanted) < 0;
    });
    for (; found != children.cend() && m_collator.compare(found->name(), name) == 0; ++found) {
        if (found->path() == path)
            return true;
    }
    return false;
}
