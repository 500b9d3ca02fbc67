// SPDX-License-Identifier: GPL-3.0-or-later
// Our entries as files: reading a folder of them (symbolic links, and file entries with
// the dot links that record their fonts), and making them again as things change (a
// font replaced, copies allowed or not, a file gone).
#include "FontActivationService.h"

#include "ActivationFiles.h"
#include "FontLinkFile.h"

#include <QHash>
#include <QMutexLocker>

#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace ActivationFiles;

// Read through the folder's handle rather than path by path (a start-up reads every link).
FontActivationService::FolderEntries FontActivationService::readFolder(const QString &folder)
{
    FolderEntries result;
    DIR *dir = ::opendir(encoded(folder).constData());
    if (!dir)
        return result;
    const int fd = ::dirfd(dir);
    struct stat own{};
    if (::fstat(fd, &own) == 0)
        result.changed = own.st_mtim;
    QByteArray target(PATH_MAX, Qt::Uninitialized);
    QHash<QByteArray, QString> records; // entry name -> font, from the dot links beside file entries
    QList<QByteArray> files;
    while (const dirent *entry = ::readdir(dir)) {
        unsigned char type = entry->d_type;
        if (type == DT_UNKNOWN) {
            struct stat info{};
            if (::fstatat(fd, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            type = S_ISDIR(info.st_mode) ? DT_DIR : S_ISLNK(info.st_mode) ? DT_LNK : S_ISREG(info.st_mode) ? DT_REG : DT_UNKNOWN;
        }
        if (type == DT_DIR) {
            if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
                result.folders.append(QFile::decodeName(entry->d_name));
        } else if (type == DT_LNK) {
            const ssize_t size = ::readlinkat(fd, entry->d_name, target.data(), static_cast<size_t>(target.size()));
            if (size <= 0)
                continue;
            const QString font = QFile::decodeName(QByteArrayView(target.constData(), size).toByteArray());
            if (entry->d_name[0] == '.') {
                records.insert(QByteArray(entry->d_name + 1), font);
                continue;
            }
            result.linkNames.append(QFile::decodeName(entry->d_name));
            result.targets.append(font);
        } else if (type == DT_REG) {
            if (entry->d_name[0] == '.')
                result.strays.append(QFile::decodeName(entry->d_name)); // a replacement a kill cut short
            else
                files.append(QByteArray(entry->d_name));
        }
    }
    ::closedir(dir);
    // A file entry stands for the font its record names; one without a record, or a
    // record without its file entry, is what a kill left of making or removing one.
    for (const QByteArray &name : std::as_const(files)) {
        const auto record = records.constFind(name);
        if (record == records.cend()) {
            result.strays.append(QFile::decodeName(name));
            continue;
        }
        result.linkNames.append(QFile::decodeName(name));
        result.targets.append(*record);
        records.erase(record);
    }
    for (auto it = records.cbegin(); it != records.cend(); ++it)
        result.strays.append(u'.' + QFile::decodeName(it.key()));
    return result;
}

bool FontActivationService::remake(const QString &font, const QString &link)
{
    const QByteArray entry = encoded(link);
    const FontLinkFile::Kind before = FontLinkFile::kindOf(entry);
    if (before == FontLinkFile::Kind::Symbolic && !m_copiesAllowed) {
        // Only a hard link or a clone may take its place: tried beside it first, so the
        // font stays active if neither works.
        const QByteArray trial = encoded(shardOf(link) + u"/.new-"_s + link.section(u'/', -1));
        const FontLinkFile::Made made = FontLinkFile::make(encoded(font), trial, false);
        const bool better = made.ok && made.kind != FontLinkFile::Kind::Symbolic;
        if (!better || ::rename(FontLinkFile::recordOf(trial).constData(), FontLinkFile::recordOf(entry).constData()) != 0
            || ::rename(trial.constData(), entry.constData()) != 0) {
            FontLinkFile::remove(trial);
            return false;
        }
        return markChanged(link);
    }
    FontLinkFile::remove(entry);
    const FontLinkFile::Made made = FontLinkFile::make(encoded(font), entry, m_copiesAllowed);
    if (!made.ok) {
        failActivation(font, errorText(made.error));
        m_turnedDown.append(font);
        forget(link);
        m_pendingShards.insert(shardOf(link));
        return false;
    }
    return markChanged(link);
}

bool FontActivationService::markChanged(const QString &link)
{
    m_pendingShards.insert(shardOf(link));
    const auto group = m_groups.find(groupOfShard(shardOf(link)));
    if (group != m_groups.end())
        group->changed = true;
    return true;
}

void FontActivationService::setCopiesAllowed(bool allowed)
{
    const QMutexLocker lock(&m_mutex);
    if (m_copiesAllowed == allowed)
        return;
    m_copiesAllowed = allowed;
    if (!m_ready || !ensureReady())
        return; // the start's repair makes the links as they should be
    // Symbolic links become copies where nothing cheaper reaches sandboxed programs;
    // copies go back to symbolic links (or whatever now costs no space).
    const FontLinkFile::Kind redo = allowed ? FontLinkFile::Kind::Symbolic : FontLinkFile::Kind::Copy;
    m_links.forEach([&](const QString &link, const QString &font) {
        if (FontLinkFile::kindOf(encoded(link)) == redo)
            remake(font, link);
    });
    rebuildPending();
}

qint64 FontActivationService::bytesToCopy()
{
    const QMutexLocker lock(&m_mutex);
    if (!ensureReady())
        return 0;
    struct stat ours{};
    const bool haveOurs = ::stat(encoded(m_linkFolder).constData(), &ours) == 0;
    qint64 bytes = 0;
    m_links.forEach([&](const QString &link, const QString &font) {
        struct stat file{};
        if (FontLinkFile::kindOf(encoded(link)) == FontLinkFile::Kind::Symbolic
            && ::stat(encoded(font).constData(), &file) == 0 && (!haveOurs || file.st_dev != ours.st_dev))
            bytes += file.st_size;
    });
    return bytes;
}

QStringList FontActivationService::refreshLinks()
{
    const QMutexLocker lock(&m_mutex);
    if (!ensureReady())
        return {};
    // A symbolic link to a file that is gone lists nothing once its folder is read again,
    // and comes back with its file (a drive mounted again); a file entry would keep the
    // font alive, so it goes, as one whose file is no font any more (with its reason).
    QStringList withdrawn;
    m_links.forEach([&](const QString &link, const QString &font) {
        const QByteArray entry = encoded(link);
        if (FontLinkFile::kindOf(entry) == FontLinkFile::Kind::Symbolic || FontLinkFile::isCurrent(encoded(font), entry))
            return;
        struct stat file{};
        if (::stat(encoded(font).constData(), &file) != 0) {
            unlinkAndForget(link);
            withdrawn.append(font);
        } else if (!S_ISREG(file.st_mode)) {
            failActivation(font, u"it is no longer a regular file"_s);
            unlinkAndForget(link);
            withdrawn.append(font);
        } else if (!readsAsFont(font)) {
            failActivation(font, u"not a font file fontconfig can read"_s, unreadable());
            unlinkAndForget(link);
            withdrawn.append(font);
        } else {
            remake(font, link);
        }
    });
    rebuildPending();
    return withdrawn;
}
