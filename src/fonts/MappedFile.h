// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QString>

#include <memory>

struct stat;

// A font file mapped read-only into memory, shared by whoever reads it: the metadata
// reader and the preview registry never copy a file's bytes. Only regular files are
// mapped, never more than their size says, so a FIFO, a device or a folder named like
// a font gives nothing at once instead of hanging or reading forever.
class MappedFile
{
public:
    // Empty when the path is not a non-empty regular file that can be mapped.
    static std::shared_ptr<const MappedFile> open(const QString &path);
    ~MappedFile();
    MappedFile(const MappedFile &) = delete;
    MappedFile &operator=(const MappedFile &) = delete;

    const unsigned char *data() const { return m_data; }
    qint64 size() const { return m_size; }
    QByteArrayView bytes() const { return {m_data, m_size}; }
    qint64 modifiedSeconds() const { return m_modifiedSeconds; } // as it was mapped

    // Whether the file is still as it was mapped. A file truncated in place (a sync
    // client, an interrupted copy) makes any read past its new end a SIGBUS, inside
    // HarfBuzz or FreeType where no check of ours runs: readers ask this first, and a
    // changed file is dropped and opened again. One fstat on the kept descriptor.
    bool isUnchanged() const;

private:
    MappedFile(const unsigned char *data, qint64 size, int fd, const struct stat &info);

    const unsigned char *m_data;
    qint64 m_size;
    int m_fd;
    qint64 m_inode;
    qint64 m_modifiedSeconds;
    qint64 m_modifiedNanoseconds;
};
