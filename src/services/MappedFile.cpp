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
    ::close(fd); // the mapping stays valid
    if (data == MAP_FAILED)
        return nullptr;
    return std::shared_ptr<const MappedFile>(
        new MappedFile(static_cast<const unsigned char *>(data), static_cast<qint64>(info.st_size)));
}

MappedFile::MappedFile(const unsigned char *data, qint64 size)
    : m_data(data)
    , m_size(size)
{
}

MappedFile::~MappedFile()
{
    ::munmap(const_cast<unsigned char *>(m_data), static_cast<size_t>(m_size));
}
