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
QStringList FinderTagService::readTags(const QString &path)
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
    QStringList tags;
    for (const QString &part : QString::fromUtf8(value).split(u',')) {
        const QString tag = part.trimmed();
        if (!tag.isEmpty())
            tags.append(tag);
    }
    return tags;
}

QString FinderTagService::writeTags(const QString &path, const QStringList &tags)
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
        const QByteArray value = tags.join(u',').toUtf8();
        result = ::setxattr(encoded.constData(), kTagsAttribute, value.constData(), static_cast<size_t>(value.size()), 0);
    }
    if (result == 0)
        return {};
    return QString::fromLocal8Bit(std::strerror(errno));
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
    QStringList updated;
    for (const QString &tag : tags(path)) {
        if (!License::allLicenseTags().contains(tag))
            updated.append(tag);
    }
    updated.append(License::tags(status));
    const QString error = writeTags(path, updated);
    if (!error.isEmpty()) {
        Console::printLine(u"Failed to set Finder tags for "_s + path + u": "_s + error);
        return;
    }
    m_cache.insert(path, updated);
}
