// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fonts/FreeTypeLibrary.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstring>
#include <ctime>

// Small helpers the activation service's files share (FontActivationService.cpp,
// FontActivationGroups.cpp, FontActivationLinks.cpp).
namespace ActivationFiles {

inline QByteArray encoded(const QString &path)
{
    return QFile::encodeName(path);
}

inline QString errorText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

inline bool isNewer(const timespec &a, const timespec &b)
{
    return a.tv_sec != b.tv_sec ? a.tv_sec > b.tv_sec : a.tv_nsec > b.tv_nsec;
}

// What fontconfig does with each file it scans, without its costly character sets:
// FreeType must open the file as a font.
inline bool readsAsFont(const QString &path)
{
    FT_Face face = nullptr;
    if (FT_New_Face(FreeType::threadLibrary(), encoded(path).constData(), 0, &face) != 0)
        return false;
    const bool font = face->num_glyphs > 0 || face->num_faces > 0;
    FT_Done_Face(face);
    return font;
}

// Why a file that is no font fails, in the window's words.
inline QString unreadable()
{
    return QStringLiteral("it is not a font file that fontconfig can read");
}

} // namespace ActivationFiles
