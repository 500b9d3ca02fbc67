// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

// One active font's entry in our font folder. A symbolic link is the cheapest, but a
// sandboxed program (Flatpak) sees our folder without the folders the links point into,
// so it finds nothing there. Where it can, the entry is the file itself: a hard link
// (same file system), else a reflink clone (btrfs, XFS), else, when the user allows it,
// a copy. Such an entry does not say which font it stands for, so a symbolic link beside
// it, named with a leading dot (fontconfig never reads dot files), records the font's
// path: it is made first and removed last, so a kill between leaves a record without an
// entry, which the next start clears away.
namespace FontLinkFile {

enum class Kind { Symbolic, Hard, Clone, Copy };

struct Made
{
    bool ok = false;
    int error = 0; // errno of the last attempt when not ok
    Kind kind = Kind::Symbolic;
};

// Makes `link` stand for `font`: a hard link, a clone, a copy when `allowCopies`, else a
// symbolic link. `link` must not exist.
Made make(const QByteArray &font, const QByteArray &link, bool allowCopies);
// Removes the entry and its record; false (errno set) when the entry stays.
bool remove(const QByteArray &link);
// The dot file beside `link` that records its font.
QByteArray recordOf(const QByteArray &link);
// What `link` is; Symbolic for a missing one.
Kind kindOf(const QByteArray &link);
// Whether a file entry still shows the font as it is now: the same file for a hard link,
// the same size and modification time for a clone or copy (which take the font's time).
// A symbolic link always does.
bool isCurrent(const QByteArray &font, const QByteArray &link);

} // namespace FontLinkFile
