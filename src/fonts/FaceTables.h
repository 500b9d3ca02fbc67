// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FontMetadata.h"
#include "FreeTypeLibrary.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <initializer_list>

// Reading a face's own tables through FreeType, shared by the metadata reader and the
// catalogue's face reader so both name a font by the same rules.
namespace FaceTables {

// The four names a face goes by, by one set of rules for every reader: from the name
// table ourselves (FreeType's own family and style strings turn every non-ASCII letter
// of a Mac Roman record into "?", and its PostScript name is empty when the name holds
// a character PostScript doesn't allow); typographic family and style first; a style
// of "Regular" when the font gives none.
struct FaceNames
{
    QString family;
    QString style;
    QString fullName;
    QString postScriptName;
};
FaceNames namesOf(FT_Face face);
FaceNames namesOf(FT_Face face, const FreeType::NameTable &table);

// The first of the name ids the name table has. A font without a name table (not an
// sfnt) has only what FreeType read from its own format.
QString firstName(FT_Face face, const FreeType::NameTable &table, std::initializer_list<FT_UInt> ids,
                  const char *fallback);
// What the name table says; a Type 1 font has none and says it in its font info.
QString fullNameOf(FT_Face face, const FreeType::NameTable &table);
// One of the face's tables, whole; empty when it has none.
QByteArray sfntTable(FT_Face face, FT_ULong tag);
// Its first `length` bytes at most: a field near the start of a big table (post's
// fixed-pitch flag) without copying the rest.
QByteArray sfntTableHead(FT_Face face, FT_ULong tag, FT_ULong length);
// Whether the face has the table, not empty, without reading it (glyf and CFF run to
// megabytes).
bool hasTable(FT_Face face, FT_ULong tag);
quint16 read16(const QByteArray &table, qsizetype offset);
quint32 read32(const QByteArray &table, qsizetype offset);
// maxp's count: FreeType's own may be one short when a font's loca table is.
qint64 glyphCountOf(FT_Face face);
// The fvar table's axes, read directly: FreeType 2.12 reports none for a font with fvar
// but no gvar. An axis without a name is named by its tag.
QList<VariationAxis> axesOf(FT_Face face);

// Closes the face whatever way the reader leaves.
struct FaceHolder
{
    FT_Face face = nullptr;
    FaceHolder() = default;
    FaceHolder(const FaceHolder &) = delete;
    FaceHolder &operator=(const FaceHolder &) = delete;
    ~FaceHolder()
    {
        if (face)
            FT_Done_Face(face);
    }
};

} // namespace FaceTables
