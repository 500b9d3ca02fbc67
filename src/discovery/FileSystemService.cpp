#include "FileSystemService.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <sys/stat.h>

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
    if (ascii)
        path.append(QLatin1StringView(name, static_cast<qsizetype>(length)));
    else
        path.append(QString::fromUtf8(name, static_cast<qsizetype>(length)));
    return path;
}

QString withoutTrailingSlash(QString path)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

} // namespace

FileSystemService::FileSystemService(CancellationToken cancellation, const QLocale &locale)
    : m_cancellation(std::move(cancellation))
    , m_collator(locale)
{
}

void FileSystemService::ensureWritable(const char *operation) const
{
    if (m_frozen) {
        // A programming error: a frozen service is shared read-only with the UI.
        std::fprintf(stderr, "FileSystemService: %s on a frozen service\n", operation);
        std::abort();
    }
}

FileSystemService::ScanResult FileSystemService::deepScan(const QString &path)
{
    const QString cleanPath = withoutTrailingSlash(path);
    if (!m_folders.contains(cleanPath))
        ensureWritable("deepScan");
    const Range range = scanFolder(cleanPath);
    const std::span<const FontNode> fonts(m_fontPool.data() + range.begin, range.end - range.begin);
    return {fonts, !fonts.empty()};
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

    std::vector<ListedEntry> listed;
    if (!listFolder(path, listed)) {
        // Unreadable: remembered as empty and fontless, siblings go on. It may
        // still exist (no permission) or be gone (vanished mid-scan).
        struct stat info{};
        if (::stat(QFile::encodeName(path).constData(), &info) == 0)
            m_existingPaths.insert(path);
        m_folders.insert(path, FolderEntry{{}, start, start, false});
        return {start, start, false};
    }

    std::vector<FontNode> folders;
    std::vector<FontNode> fonts;
    for (const ListedEntry &entry : listed) {
        if (m_cancellation.isCancelled())
            return {start, start, true};
        if (!entry.isFolder) {
            FontNode node = FontNode::fontFile(entry.path);
            m_fontPool.push_back(node);
            fonts.push_back(std::move(node));
            continue;
        }
        const auto subCached = m_folders.constFind(entry.path);
        const Range sub = subCached != m_folders.cend() ? appendCachedFonts(*subCached) : scanFolder(entry.path);
        if (sub.end > sub.begin)
            folders.push_back(FontNode::folder(entry.path));
    }
    // A cancellation inside the last subfolder must not leave a partial run cached.
    if (m_cancellation.isCancelled())
        return {start, start, true};

    const auto nameOf = [](const FontNode &node) { return node.name(); };
    m_collator.stableSort(folders, nameOf);
    m_collator.stableSort(fonts, nameOf);
    FolderEntry folderEntry;
    folderEntry.children.reserve(static_cast<qsizetype>(folders.size() + fonts.size()));
    for (FontNode &node : folders)
        folderEntry.children.append(std::move(node));
    for (FontNode &node : fonts)
        folderEntry.children.append(std::move(node));
    folderEntry.fontsBegin = start;
    folderEntry.fontsEnd = static_cast<quint32>(m_fontPool.size());
    folderEntry.listed = true;
    m_folders.insert(path, std::move(folderEntry));
    return {start, static_cast<quint32>(m_fontPool.size()), false};
}

// Lists with readdir and d_type; lstat only when the file system leaves the type
// unknown. Hidden means a leading dot. A symbolic link is never descended into: it
// counts as a file and is judged by its name, so a link named x.ttf is a font.
// Files that are not fonts never become nodes, so no string is built for them.
bool FileSystemService::listFolder(const QString &path, std::vector<ListedEntry> &entries)
{
    const QByteArray encoded = QFile::encodeName(path);
    DIR *dir = ::opendir(encoded.constData());
    if (!dir)
        return false;
    const QString prefix = path.endsWith(u'/') ? path : path + u'/';
    // Read everything first and close: deep trees must not hold one descriptor per level.
    while (const dirent *entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        const size_t length = std::strlen(entry->d_name);
        bool isFolder = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN) {
            struct stat info{};
            const QByteArray child = encoded + '/' + QByteArray(entry->d_name, static_cast<qsizetype>(length));
            isFolder = ::lstat(child.constData(), &info) == 0 && S_ISDIR(info.st_mode);
        }
        if (!isFolder && !isFontFileName(entry->d_name, length))
            continue;
        QString child = childPath(prefix, entry->d_name, length);
        if (!child.isEmpty())
            entries.push_back({std::move(child), isFolder});
    }
    ::closedir(dir);
    return true;
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
    return std::any_of(parent->children.cbegin(), parent->children.cend(),
                       [&path](const FontNode &child) { return child.isFont() && child.path() == path; });
}
