// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <QString>

// FreeType wants one library object per thread; this hands out the calling thread's.
namespace FreeType {

FT_Library threadLibrary();

// A name-table string (any platform we can decode), preferring Windows English.
// Empty when the font has no usable record with that name id.
QString sfntName(FT_Face face, FT_UInt nameId);

} // namespace FreeType
