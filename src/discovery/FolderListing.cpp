// SPDX-License-Identifier: GPL-3.0-or-later
#include "FolderListing.h"
#include "model/SharedPaths.h"

#include <QFile>

#include <algorithm>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>

namespace {

// File names are bytes on Linux. A name that is not valid UTF-8 can't be turned
// into a path string that leads back to the file, so the scan skips it.
bool isValidUtf8(const unsigned char *s, size_t length)
{
    size_t i = 0;
    while (i < length) {
        const unsigned char c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        size_t extra = 0;
        unsigned int codePoint = 0;
        if ((c & 0xE0) == 0xC0) {
            extra = 1;
            codePoint = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            extra = 2;
            codePoint = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            extra = 3;
            codePoint = c & 0x07;
        } else {
            return false;
        }
        if (i + extra >= length)
            return false;
        for (size_t k = 1; k <= extra; ++k) {
            if ((s[i + k] & 0xC0) != 0x80)
                return false;
            codePoint = (codePoint << 6) | (s[i + k] & 0x3F);
        }
        static const unsigned int minimum[] = {0, 0x80, 0x800, 0x10000};
        if (codePoint < minimum[extra] || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
            return false;
        i += extra + 1;
    }
    return true;
}

// The child's path, built in one allocation; empty when the name is not UTF-8.
QString childPath(const QString &prefix, const char *name, size_t length)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(name);
    const bool ascii = std::all_of(bytes, bytes + length, [](unsigned char c) { return c < 0x80; });
    if (!ascii && !isValidUtf8(bytes, length))
        return {};
    QString path;
    path.reserve(prefix.size() + static_cast<qsizetype>(length));
    path.append(prefix);
    if (ascii) {
        path.append(QLatin1StringView(name, static_cast<qsizetype>(length)));
        return path;
    }
    // QString::fromUtf8 drops a leading byte-order mark, and the path would then lead
    // to another name: it is kept as the character it is.
    if (length >= 3 && std::memcmp(name, "\xEF\xBB\xBF", 3) == 0) {
        path.append(QChar(0xFEFF));
        name += 3;
        length -= 3;
    }
    path.append(QString::fromUtf8(name, static_cast<qsizetype>(length)));
    return path;
}

constexpr qint64 kCoarsestTickNs = 2'000'000'000; // FAT keeps times to two seconds

qint64 nanoseconds(const timespec &time)
{
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

FolderStamp stampOf(const struct stat &info)
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const qint64 modified = nanoseconds(info.st_mtim);
    return {static_cast<quint64>(info.st_dev), static_cast<quint64>(info.st_ino), modified, nanoseconds(info.st_ctim),
            modified < nanoseconds(now) - kCoarsestTickNs};
}

} // namespace

FolderStamp FolderStamp::of(const QString &path)
{
    struct stat info{};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISDIR(info.st_mode))
        return {};
    return stampOf(info);
}

FolderStamp FolderStamp::fromDescriptor(int fd)
{
    struct stat info{};
    if (::fstat(fd, &info) != 0)
        return {};
    return stampOf(info);
}

// Lists with readdir and d_type; lstat only when the file system leaves the type
// unknown. Hidden means a leading dot. A symbolic link is never descended into: it
// counts as a file and is judged by its name, so a link named x.ttf is a font (a
// dangling one too), unless it leads to a folder; only links with a font's name are
// followed to find out. Files that are not fonts never become nodes, so no string is
// built for them.
FolderListing FolderListing::read(const QString &path)
{
    FolderListing listing;
    listing.path = path;
    const QByteArray encoded = QFile::encodeName(path);
    DIR *dir = ::opendir(encoded.constData());
    if (!dir)
        return listing;
    listing.readable = true;
    // Read everything first and close: deep trees must not hold one descriptor per level.
    const int fd = ::dirfd(dir);
    // Before the entries: a change while they are read moves the time past this stamp.
    listing.stamp = FolderStamp::fromDescriptor(fd);
    while (const dirent *entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        const size_t length = std::strlen(entry->d_name);
        bool isFolder = entry->d_type == DT_DIR;
        bool isLink = entry->d_type == DT_LNK;
        // A FIFO, socket or device is never a font, whatever its name: reading one may
        // wait for ever.
        bool isSpecial = entry->d_type == DT_FIFO || entry->d_type == DT_SOCK || entry->d_type == DT_CHR
                         || entry->d_type == DT_BLK;
        if (entry->d_type == DT_UNKNOWN) {
            struct stat info{};
            const bool known = ::fstatat(fd, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0;
            isFolder = known && S_ISDIR(info.st_mode);
            isLink = known && S_ISLNK(info.st_mode);
            isSpecial = known && !isFolder && !isLink && !S_ISREG(info.st_mode);
        }
        if (isSpecial || (!isFolder && !isFontFileName(entry->d_name, length)))
            continue;
        if (isLink) {
            struct stat target{};
            // A folder in a font's name: no row that can never be activated. A dangling
            // link stays (its drive may come back); one to a FIFO or a device goes.
            if (::fstatat(fd, entry->d_name, &target, 0) == 0 && !S_ISREG(target.st_mode))
                continue;
        }
        listing.entries.push_back({static_cast<quint32>(listing.names.size()), static_cast<quint32>(length), isFolder});
        listing.names.append(entry->d_name, length);
    }
    ::closedir(dir);
    return listing;
}

QString FolderListing::prefix() const
{
    return path.endsWith(u'/') ? path : path + u'/';
}

std::optional<FontNode> FolderListing::node(const QString &prefix, const Entry &entry) const
{
    QString child = childPath(prefix, names.data() + entry.offset, entry.length);
    if (child.isEmpty())
        return std::nullopt;
    if (!entry.isFolder)
        child = SharedPaths::share(child); // the catalogue and the links hold the same paths
    return FontNode::scanned(std::move(child), prefix.size(), entry.isFolder);
}

ListingPrefetcher::ListingPrefetcher(const QString &root)
    : m_thread(&ListingPrefetcher::run, this, root)
{
}

ListingPrefetcher::~ListingPrefetcher()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void ListingPrefetcher::run(QString root)
{
    // Depth first in listing order, as the scan recurses: push subfolders reversed.
    std::vector<QString> stack{std::move(root)};
    std::vector<FolderListing> batch;
    int published = 0;
    while (!stack.empty()) {
        FolderListing listing = FolderListing::read(stack.back());
        stack.pop_back();
        const QString prefix = listing.prefix();
        for (auto entry = listing.entries.rbegin(); entry != listing.entries.rend(); ++entry) {
            if (!entry->isFolder)
                continue;
            if (std::optional<FontNode> folder = listing.node(prefix, *entry))
                stack.push_back(folder->path());
        }
        batch.push_back(std::move(listing));
        // Single listings at first, so the scan starts at once.
        if (batch.size() >= kBatch || stack.empty() || published < 8) {
            publish(batch);
            ++published;
        }
        if (m_stop)
            break;
    }
    const std::lock_guard lock(m_mutex);
    m_done = true;
    m_changed.notify_all();
}

void ListingPrefetcher::publish(std::vector<FolderListing> &batch)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_stop || m_queue.size() < kMaxQueued; });
    for (FolderListing &listing : batch)
        m_queue.push_back(std::move(listing));
    batch.clear();
    lock.unlock();
    m_changed.notify_all();
}

std::optional<FolderListing> ListingPrefetcher::take(const QString &path)
{
    while (true) {
        if (m_taken.empty()) {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_done || !m_queue.empty(); });
            if (m_queue.empty())
                return std::nullopt;
            m_taken.swap(m_queue);
            lock.unlock();
            m_changed.notify_all();
        }
        FolderListing listing = std::move(m_taken.front());
        m_taken.pop_front();
        if (listing.path == path)
            return listing;
    }
}
