// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <QString>

#include <vector>

// FreeType wants one library object per thread; this hands out the calling thread's.
namespace FreeType {

FT_Library threadLibrary();

// A name-table string (any platform we can decode), preferring Windows English.
// Empty when the font has no usable record with that name id.
QString sfntName(FT_Face face, FT_UInt nameId);

// The same answers for many names of one face: its records sorted by name id and
// preference once, rather than the whole table walked for every name.
class NameTable
{
public:
    explicit NameTable(FT_Face face);
    QString name(FT_UInt nameId) const;

private:
    struct Record
    {
        FT_UShort nameId;
        int rank; // lower is preferred
        FT_UInt index;
    };
    FT_Face m_face;
    std::vector<Record> m_records; // by name id, then rank, then table order
};

} // namespace FreeType
