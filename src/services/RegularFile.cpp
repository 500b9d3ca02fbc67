// SPDX-License-Identifier: GPL-3.0-or-later
#include "RegularFile.h"

#include <QFile>
#include <QLocale>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace RegularFile {

Contents read(const QString &path, qint64 maxBytes)
{
    Contents result;
    // O_NONBLOCK: opening a FIFO must not wait for a writer; the type is then checked
    // on the open file, so a file swapped in after a look at the path can't slip by.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        result.missing = errno == ENOENT || errno == ENOTDIR;
        result.error = QString::fromLocal8Bit(std::strerror(errno));
        return result;
    }
    struct stat info{};
    if (::fstat(fd, &info) != 0) {
        result.error = QString::fromLocal8Bit(std::strerror(errno));
    } else if (!S_ISREG(info.st_mode)) {
        result.special = true;
        result.error = S_ISDIR(info.st_mode) ? u"it is a folder, not a file"_s
                                             : u"it is not a regular file (a pipe or a device)"_s;
    } else if (info.st_size > maxBytes) {
        result.special = true;
        result.error = u"it is too large (%1; at most %2 expected)"_s.arg(
            QLocale::c().formattedDataSize(info.st_size, 1, QLocale::DataSizeSIFormat),
            QLocale::c().formattedDataSize(maxBytes, 0, QLocale::DataSizeSIFormat));
    }
    if (!result.ok()) {
        ::close(fd);
        return result;
    }
    // Read to the end rather than trust the size: the file may grow or shrink meanwhile,
    // but never past the limit.
    result.bytes.resize(static_cast<qsizetype>(info.st_size));
    qsizetype filled = 0;
    for (;;) {
        if (filled == result.bytes.size()) {
            if (filled >= maxBytes)
                break;
            result.bytes.resize(std::min<qsizetype>(maxBytes, filled + 65536));
        }
        const ssize_t got = ::read(fd, result.bytes.data() + filled, static_cast<size_t>(result.bytes.size() - filled));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            result.error = QString::fromLocal8Bit(std::strerror(errno));
            break;
        }
        if (got == 0)
            break;
        filled += got;
    }
    ::close(fd);
    result.bytes.truncate(filled);
    if (!result.ok())
        result.bytes.clear();
    return result;
}

bool sameFile(const QString &a, const QString &b)
{
    struct stat first{};
    struct stat second{};
    return ::stat(QFile::encodeName(a).constData(), &first) == 0 &&
           ::stat(QFile::encodeName(b).constData(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

} // namespace RegularFile
