// SPDX-License-Identifier: GPL-3.0-or-later
#include "AtomicFile.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString describe(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Writes everything or says why not; a write that stops short is retried for the rest.
int writeAll(int fd, const char *data, qsizetype size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, static_cast<size_t>(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        if (written == 0)
            return ENOSPC;
        data += written;
        size -= written;
    }
    return 0;
}

int syncFolder(const QByteArray &folder)
{
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return errno;
    const int result = ::fsync(fd) == 0 || errno == EINVAL ? 0 : errno; // some file systems can't
    ::close(fd);
    return result;
}

} // namespace

namespace AtomicFile {

std::optional<QString> write(const QString &path, const QByteArray &bytes)
{
    // A file past the size limit would otherwise kill the process with SIGXFSZ.
    static const bool ignored = [] { return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR; }();
    (void)ignored;

    const QByteArray target = QFile::encodeName(path);
    const qsizetype slash = target.lastIndexOf('/');
    const QByteArray folder = slash <= 0 ? QByteArray("/") : target.left(slash);
    QByteArray temporary = folder + '/' + '.' + target.mid(slash + 1) + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        return describe(errno);
    int error = writeAll(fd, bytes.constData(), bytes.size());
    if (error == 0 && ::fsync(fd) != 0 && errno != EINVAL)
        error = errno;
    // close() is where some file systems (NFS) report a write that failed.
    if (::close(fd) != 0 && error == 0)
        error = errno;
    // mkstemp makes the file private; saved files are ordinary user files.
    if (error == 0 && ::chmod(temporary.constData(), 0644) != 0)
        error = errno;
    if (error == 0 && ::rename(temporary.constData(), target.constData()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(temporary.constData());
        return describe(error);
    }
    if (const int synced = syncFolder(folder); synced != 0)
        return describe(synced);
    return std::nullopt;
}

} // namespace AtomicFile
