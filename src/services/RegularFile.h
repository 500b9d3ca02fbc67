// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// Reads Morvane's own data (saved lists, collection icons) without trusting what the
// path names: a FIFO would block the open for ever, a device such as /dev/zero would
// never end, and a huge file would exhaust memory. Only a regular file (a link is
// followed to one) of at most `maxBytes` is read; everything else is refused at once
// with a reason a person can act on.
namespace RegularFile {

struct Contents
{
    QByteArray bytes;
    QString error;        // empty when the bytes are the whole file
    bool missing = false; // nothing at the path (a dangling link counts as missing)
    bool special = false; // there, but not a regular file, or too large: never read
    bool ok() const { return error.isEmpty(); }
};

Contents read(const QString &path, qint64 maxBytes);

// Whether two paths name the same file (the same device and inode).
bool sameFile(const QString &a, const QString &b);

} // namespace RegularFile
