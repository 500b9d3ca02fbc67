// SPDX-License-Identifier: GPL-3.0-or-later
#include "FinderTagService.h"

#include "Console.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <sys/xattr.h>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *kTagsAttribute = "user.xdg.tags";

} // namespace

// getxattr/setxattr follow symbolic links, so a link's tags are its target's; a
// link itself can't carry user attributes on Linux anyway.
QList<QByteArray> FinderTagService::readRawTags(const QString &path)
{
    const QByteArray encoded = QFile::encodeName(path);
    QByteArray value(256, Qt::Uninitialized);
    ssize_t size = ::getxattr(encoded.constData(), kTagsAttribute, value.data(), static_cast<size_t>(value.size()));
    if (size < 0 && errno == ERANGE) {
        size = ::getxattr(encoded.constData(), kTagsAttribute, nullptr, 0);
        if (size > 0) {
            value.resize(size);
            size = ::getxattr(encoded.constData(), kTagsAttribute, value.data(), static_cast<size_t>(value.size()));
        }
    }
    if (size <= 0)
        return {};
    value.truncate(size);
    // Older writers join with ", "; be tolerant of spaces and empty parts.
    QList<QByteArray> tags;
    for (const QByteArray &part : value.split(',')) {
        QByteArray tag = part.trimmed();
        if (!tag.isEmpty())
            tags.append(std::move(tag));
    }
    return tags;
}

QStringList FinderTagService::readTags(const QString &path)
{
    QStringList tags;
    for (const QByteArray &tag : readRawTags(path))
        tags.append(QString::fromUtf8(tag));
    return tags;
}

QString FinderTagService::writeRawTags(const QString &path, const QList<QByteArray> &tags, int *code)
{
    const QByteArray encoded = QFile::encodeName(path);
    int result = 0;
    if (tags.isEmpty()) {
        // No tags is no attribute, as file managers leave it.
        result = ::removexattr(encoded.constData(), kTagsAttribute);
        if (result != 0 && errno == ENODATA) {
            struct stat info{};
            result = ::stat(encoded.constData(), &info);
        }
    } else {
        const QByteArray value = tags.join(',');
        result = ::setxattr(encoded.constData(), kTagsAttribute, value.constData(), static_cast<size_t>(value.size()), 0);
    }
    if (result == 0)
        return {};
    const int error = errno;
    if (code)
        *code = error;
    return QString::fromLocal8Bit(std::strerror(error));
}

QString FinderTagService::writeTags(const QString &path, const QStringList &tags)
{
    QList<QByteArray> raw;
    for (const QString &tag : tags)
        raw.append(tag.toUtf8());
    return writeRawTags(path, raw);
}

QStringList FinderTagService::tags(const QString &path)
{
    const auto cached = m_cache.constFind(path);
    if (cached != m_cache.cend())
        return *cached;
    const QStringList read = readTags(path);
    m_cache.insert(path, read);
    return read;
}

void FinderTagService::setLicenseStatus(LicenseStatus status, const QString &path)
{
    // What is on the file now, not what was cached: a tag the file manager added since
    // our last read is kept. Other programs' tags keep their exact bytes, UTF-8 or not.
    QList<QByteArray> ours;
    for (const QString &tag : License::allLicenseTags())
        ours.append(tag.toUtf8());
    QList<QByteArray> updated;
    for (QByteArray &tag : readRawTags(path)) {
        if (!ours.contains(tag))
            updated.append(std::move(tag));
    }
    for (const QString &tag : License::tags(status))
        updated.append(tag.toUtf8());
    int code = 0;
    const QString error = writeRawTags(path, updated, &code);
    if (!error.isEmpty()) {
        m_failure = WriteFailure{error, code == ENOTSUP};
        Console::printLine(u"Failed to set Finder tags for "_s + path + u": "_s + error);
        return;
    }
    QStringList shown;
    for (const QByteArray &tag : std::as_const(updated))
        shown.append(QString::fromUtf8(tag));
    m_cache.insert(path, shown);
}
