// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontLinkFile.h"

#include <cerrno>
#include <utility>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace FontLinkFile {

namespace {

class Fd
{
public:
    explicit Fd(int fd) : m_fd(fd) {}
    ~Fd()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Fd(const Fd &) = delete;
    Fd &operator=(const Fd &) = delete;
    int get() const { return m_fd; }
    int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd;
};

// A clone or a copy of `font` at `link`, with the font's modification time (how
// isCurrent() tells a stale one). Nothing is left at `link` when it fails.
bool duplicate(const QByteArray &font, const QByteArray &link, bool clone)
{
    const Fd in(::open(font.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info{};
    if (in.get() < 0 || ::fstat(in.get(), &info) != 0)
        return false;
    if (!S_ISREG(info.st_mode)) {
        errno = EINVAL;
        return false;
    }
    Fd out(::open(link.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (out.get() < 0)
        return false;
    bool done = false;
    if (clone) {
        done = ::ioctl(out.get(), FICLONE, in.get()) == 0;
    } else {
        off_t left = info.st_size;
        done = true;
        bool inKernel = true; // copy_file_range, where the file systems allow it
        while (left > 0) {
            ssize_t copied = -1;
            if (inKernel) {
                copied = ::copy_file_range(in.get(), nullptr, out.get(), nullptr, static_cast<size_t>(left), 0);
                if (copied < 0 && (errno == EXDEV || errno == EINVAL || errno == EOPNOTSUPP || errno == ENOSYS)) {
                    inKernel = false; // between file systems of different kinds
                    continue;
                }
            } else {
                copied = ::sendfile(out.get(), in.get(), nullptr, static_cast<size_t>(left));
            }
            if (copied <= 0) { // a file cut short meanwhile ends at 0: not the font it was
                if (copied == 0)
                    errno = EIO;
                done = false;
                break;
            }
            left -= copied;
        }
    }
    if (done) {
        const timespec times[2] = {info.st_atim, info.st_mtim};
        done = ::futimens(out.get(), times) == 0;
    }
    const int error = errno;
    if (::close(out.release()) != 0 && done) // a full disk may say so only here
        done = false;
    if (!done) {
        ::unlink(link.constData());
        errno = error;
    }
    return done;
}

} // namespace

QByteArray recordOf(const QByteArray &link)
{
    const qsizetype slash = link.lastIndexOf('/');
    QByteArray record = link.left(slash + 1);
    record.append('.');
    record.append(QByteArrayView(link).sliced(slash + 1));
    return record;
}

Made make(const QByteArray &font, const QByteArray &link, bool allowCopies)
{
    const QByteArray record = recordOf(link);
    ::unlink(record.constData()); // a kill's leftover
    if (::symlink(font.constData(), record.constData()) == 0) {
        // The file a font's path names, not a symbolic link it may be.
        if (::linkat(AT_FDCWD, font.constData(), AT_FDCWD, link.constData(), AT_SYMLINK_FOLLOW) == 0)
            return {.ok = true, .kind = Kind::Hard};
        // Another file system, or a file the kernel won't let us link (not ours).
        if (duplicate(font, link, true))
            return {.ok = true, .kind = Kind::Clone};
        if (allowCopies && duplicate(font, link, false))
            return {.ok = true, .kind = Kind::Copy};
        ::unlink(record.constData());
    }
    // The record could not be made (a full disk may still take a link), or nothing but a
    // symbolic link will do: it records its font itself.
    if (::symlink(font.constData(), link.constData()) == 0)
        return {.ok = true, .kind = Kind::Symbolic};
    return {.ok = false, .error = errno};
}

bool remove(const QByteArray &link)
{
    if (::unlink(link.constData()) != 0 && errno != ENOENT)
        return false;
    ::unlink(recordOf(link).constData());
    return true;
}

Kind kindOf(const QByteArray &link)
{
    struct stat entry{};
    if (::lstat(link.constData(), &entry) != 0 || S_ISLNK(entry.st_mode))
        return Kind::Symbolic;
    if (entry.st_nlink > 1)
        return Kind::Hard;
    // A clone and a copy look alike from here; which one only matters for the space a
    // copy takes, and a clone takes none until one of them is written.
    return Kind::Copy;
}

bool isCurrent(const QByteArray &font, const QByteArray &link)
{
    struct stat entry{}, file{};
    if (::lstat(link.constData(), &entry) != 0)
        return false;
    if (S_ISLNK(entry.st_mode))
        return true;
    if (::stat(font.constData(), &file) != 0)
        return false;
    if (entry.st_ino == file.st_ino && entry.st_dev == file.st_dev)
        return true;
    return entry.st_size == file.st_size && entry.st_mtim.tv_sec == file.st_mtim.tv_sec
           && entry.st_mtim.tv_nsec == file.st_mtim.tv_nsec;
}

} // namespace FontLinkFile
