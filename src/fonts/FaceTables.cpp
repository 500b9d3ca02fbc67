// SPDX-License-Identifier: GPL-3.0-or-later
#include "FaceTables.h"

#include "FreeTypeLibrary.h"

#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H
#include FT_TYPE1_TABLES_H

#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr FT_UInt kFamilyId = 1;
constexpr FT_UInt kStyleId = 2;
constexpr FT_UInt kFullNameId = 4;
constexpr FT_UInt kPostScriptNameId = 6;
constexpr FT_UInt kTypographicFamilyId = 16;
constexpr FT_UInt kTypographicStyleId = 17;

} // namespace

namespace FaceTables {

FaceNames namesOf(FT_Face face)
{
    return namesOf(face, FreeType::NameTable(face));
}

FaceNames namesOf(FT_Face face, const FreeType::NameTable &table)
{
    FaceNames names;
    names.postScriptName =
        firstName(face, table, {kPostScriptNameId}, FT_IS_SFNT(face) ? nullptr : FT_Get_Postscript_Name(face));
    names.family = firstName(face, table, {kTypographicFamilyId, kFamilyId}, face->family_name);
    names.style = firstName(face, table, {kTypographicStyleId, kStyleId}, face->style_name);
    if (names.style.isEmpty())
        names.style = u"Regular"_s;
    names.fullName = fullNameOf(face, table);
    return names;
}

// The first of the name ids the name table has. A font without a name table (not
// an sfnt) has only what FreeType read from its own format.
QString firstName(FT_Face face, const FreeType::NameTable &table, std::initializer_list<FT_UInt> ids,
                  const char *fallback)
{
    if (!FT_IS_SFNT(face)) {
        QString name = fallback ? QString::fromUtf8(fallback) : QString();
        name.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
        return name;
    }
    for (const FT_UInt id : ids) {
        QString name = table.name(id);
        if (!name.isEmpty())
            return name;
    }
    return {};
}

// What the name table says; a Type 1 font has none and says it in its font info.
QString fullNameOf(FT_Face face, const FreeType::NameTable &table)
{
    QString name = table.name(kFullNameId);
    if (!name.isEmpty())
        return name;
    PS_FontInfoRec info{};
    if (FT_Get_PS_Font_Info(face, &info) == 0 && info.full_name)
        return QString::fromLatin1(info.full_name);
    return {};
}

// One of the face's tables, whole; empty when it has none.
QByteArray sfntTable(FT_Face face, FT_ULong tag)
{
    FT_ULong length = 0;
    if (FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) != 0 || length == 0)
        return {};
    QByteArray table(static_cast<qsizetype>(length), Qt::Uninitialized);
    if (FT_Load_Sfnt_Table(face, tag, 0, reinterpret_cast<FT_Byte *>(table.data()), &length) != 0)
        return {};
    return table;
}

QByteArray sfntTableHead(FT_Face face, FT_ULong tag, FT_ULong length)
{
    FT_ULong whole = 0;
    if (FT_Load_Sfnt_Table(face, tag, 0, nullptr, &whole) != 0 || whole == 0)
        return {};
    length = std::min(length, whole);
    QByteArray head(static_cast<qsizetype>(length), Qt::Uninitialized);
    if (FT_Load_Sfnt_Table(face, tag, 0, reinterpret_cast<FT_Byte *>(head.data()), &length) != 0)
        return {};
    return head;
}

bool hasTable(FT_Face face, FT_ULong tag)
{
    FT_ULong length = 0;
    return FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) == 0 && length > 0;
}

quint16 read16(const QByteArray &table, qsizetype offset)
{
    return qFromBigEndian<quint16>(table.constData() + offset);
}

quint32 read32(const QByteArray &table, qsizetype offset)
{
    return qFromBigEndian<quint32>(table.constData() + offset);
}

// maxp's count: FreeType's own may be one short when a font's loca table is.
qint64 glyphCountOf(FT_Face face)
{
    const QByteArray maxp = sfntTable(face, TTAG_maxp);
    return maxp.size() >= 6 ? read16(maxp, 4) : face->num_glyphs;
}

// The fvar table's axes, read directly: FreeType 2.12 reports none for a font with
// fvar but no gvar. An axis without a name is named by its tag.
QList<VariationAxis> axesOf(FT_Face face)
{
    QList<VariationAxis> axes;
    const QByteArray fvar = sfntTable(face, TTAG_fvar);
    if (fvar.size() < 16)
        return axes;
    const qsizetype first = read16(fvar, 4);
    const quint16 count = read16(fvar, 8);
    const qsizetype recordSize = read16(fvar, 10);
    if (recordSize < 20)
        return axes;
    for (quint16 i = 0; i < count; ++i) {
        const qsizetype record = first + i * recordSize;
        if (record + 20 > fvar.size())
            break;
        const quint32 id = read32(fvar, record);
        const char tag[4] = {static_cast<char>(id >> 24), static_cast<char>((id >> 16) & 255),
                             static_cast<char>((id >> 8) & 255), static_cast<char>(id & 255)};
        const auto fixed = [&](qsizetype offset) { return static_cast<qint32>(read32(fvar, offset)) / 65536.0; };
        const QString tagText = QString::fromLatin1(tag, 4);
        const QString name = FreeType::sfntName(face, read16(fvar, record + 18));
        axes.append({id, name.isEmpty() ? tagText : name, tagText, fixed(record + 4), fixed(record + 12),
                     fixed(record + 8)});
    }
    return axes;
}

} // namespace FaceTables
