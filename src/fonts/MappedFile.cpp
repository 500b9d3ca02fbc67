// SPDX-License-Identifier: GPL-3.0-or-later
#include "MappedFile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

std::shared_ptr<const MappedFile> MappedFile::open(const QString &path)
{
    // O_NONBLOCK: opening a FIFO must not wait for a writer. The type is checked on
    // the open file itself, so a file swapped in after a look at its path can't slip by.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    struct stat info{};
    void *data = MAP_FAILED;
    if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0)
        data = ::mmap(nullptr, static_cast<size_t>(info.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    if (data == MAP_FAILED) {
        ::close(fd);
        return nullptr;
    }
    // The descriptor is kept: it tells whether the file changed since (see isUnchanged).
    return std::shared_ptr<const MappedFile>(
        new MappedFile(static_cast<const unsigned char *>(data), static_cast<qint64>(info.st_size), fd, info));
}

MappedFile::MappedFile(const unsigned char *data, qint64 size, int fd, const struct stat &info)
    : m_data(data)
    , m_size(size)
    , m_fd(fd)
    , m_inode(static_cast<qint64>(info.st_ino))
    , m_modifiedSeconds(info.st_mtim.tv_sec)
    , m_modifiedNanoseconds(info.st_mtim.tv_nsec)
{
}

MappedFile::~MappedFile()
{
    ::munmap(const_cast<unsigned char *>(m_data), static_cast<size_t>(m_size));
    ::close(m_fd);
}

bool MappedFile::isUnchanged() const
{
    struct stat info{};
    return ::fstat(m_fd, &info) == 0 && info.st_size == m_size && static_cast<qint64>(info.st_ino) == m_inode &&
           info.st_mtim.tv_sec == m_modifiedSeconds && info.st_mtim.tv_nsec == m_modifiedNanoseconds;
}
