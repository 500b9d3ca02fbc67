// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontMetadata.h"

#include "FreeTypeLibrary.h"
#include "MappedFile.h"

#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H
#include FT_TYPE1_TABLES_H

#include <QFile>
#include <QLocale>
#include <QtEndian>

#include <cmath>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

constexpr FT_UInt kFamilyId = 1;
constexpr FT_UInt kStyleId = 2;
constexpr FT_UInt kFullNameId = 4;
constexpr FT_UInt kPostScriptNameId = 6;
constexpr FT_UInt kTypographicFamilyId = 16;
constexpr FT_UInt kTypographicStyleId = 17;

// The first of the name ids the name table has. A font without a name table (not
// an sfnt) has only what FreeType read from its own format.
QString firstName(FT_Face face, std::initializer_list<FT_UInt> ids, const char *fallback)
{
    if (!FT_IS_SFNT(face)) {
        QString name = fallback ? QString::fromUtf8(fallback) : QString();
        name.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
        return name;
    }
    for (const FT_UInt id : ids) {
        QString name = FreeType::sfntName(face, id);
        if (!name.isEmpty())
            return name;
    }
    return {};
}

// Closes the face whatever way the reader leaves.
struct FaceHolder
{
    FT_Face face = nullptr;
    ~FaceHolder()
    {
        if (face)
            FT_Done_Face(face);
    }
};

// What the name table says; a Type 1 font has none and says it in its font info.
QString fullNameOf(FT_Face face)
{
    QString name = FreeType::sfntName(face, kFullNameId);
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

} // namespace

namespace FontFiles {

QString fileTypeName(const QString &path)
{
    const QString name = path.section(u'/', -1);
    const qsizetype dot = name.lastIndexOf(u'.');
    const QString extension = dot < 0 ? QString() : name.mid(dot + 1).toLower();
    if (extension == u"ttf")
        return u"TrueType Font"_s;
    if (extension == u"otf")
        return u"OpenType Font"_s;
    if (extension == u"ttc")
        return u"TrueType Collection"_s;
    if (extension == u"otc")
        return u"OpenType Collection"_s;
    if (extension == u"dfont")
        return u"Data Fork Suitcase"_s;
    return u"Font File"_s;
}

QString formatFileSize(qint64 bytes)
{
    if (bytes == 1)
        return u"1 byte"_s;
    struct Unit
    {
        double factor;
        int precision;
        const char16_t *name;
    };
    static constexpr Unit kUnits[] = {{1, 0, u"bytes"}, {1e3, 0, u"kB"}, {1e6, 1, u"MB"}, {1e9, 2, u"GB"},
                                      {1e12, 2, u"TB"}, {1e15, 2, u"PB"}};
    constexpr int kLast = static_cast<int>(std::size(kUnits)) - 1;
    int unit = 0;
    while (unit < kLast && static_cast<double>(bytes) >= kUnits[unit + 1].factor)
        ++unit;
    // Rounded first, then the unit checked again: 999,999 bytes is "1.0 MB", not "1,000 kB".
    const auto rounded = [&](int u) {
        const double scale = std::pow(10.0, kUnits[u].precision);
        return std::round(static_cast<double>(bytes) / kUnits[u].factor * scale) / scale;
    };
    if (unit < kLast && rounded(unit) >= 1000)
        ++unit;
    return QLocale().toString(rounded(unit), 'f', kUnits[unit].precision) + u' ' +
           QString::fromUtf16(kUnits[unit].name);
}

bool tablesFitInside(QByteArrayView data)
{
    const auto size = static_cast<quint64>(data.size());
    const auto *bytes = reinterpret_cast<const uchar *>(data.constData());
    auto read32 = [&](quint64 offset) { return qFromBigEndian<quint32>(bytes + offset); };
    if (size < 12)
        return false;
    quint64 directory = 0;
    if (read32(0) == 0x74746366) { // 'ttcf': the first face's directory
        if (size < 16)
            return false;
        directory = read32(12);
        // The face's offset comes from the file: checked before anything is read there.
        if (directory + 12 > size)
            return false;
    }
    const quint32 version = read32(directory);
    const bool sfnt = version == 0x00010000 || version == 0x4F54544F /* OTTO */ || version == 0x74727565 /* true */;
    if (!sfnt)
        return true; // not a table-based format (suitcase, Type 1): FreeType decides
    const quint16 tableCount = qFromBigEndian<quint16>(bytes + directory + 4);
    if (directory + 12 + 16ull * tableCount > size)
        return false;
    for (quint16 i = 0; i < tableCount; ++i) {
        const quint64 record = directory + 12 + 16ull * i;
        if (static_cast<quint64>(read32(record + 8)) + read32(record + 12) > size)
            return false;
    }
    return true;
}

} // namespace FontFiles

std::optional<FontMetadata> FontMetadata::load(const QString &path)
{
    const std::shared_ptr<const MappedFile> file = MappedFile::open(path);
    if (!file || !FontFiles::tablesFitInside(file->bytes()))
        return std::nullopt;

    FaceHolder holder;
    if (FT_New_Memory_Face(FreeType::threadLibrary(), file->data(), static_cast<FT_Long>(file->size()), 0,
                           &holder.face) != 0)
        return std::nullopt;
    FT_Face face = holder.face;

    FontMetadata metadata;
    // From the name table ourselves: FreeType's own family and style strings turn
    // every non-ASCII letter of a Mac Roman record into "?", and its PostScript name
    // is empty when the name holds a character PostScript doesn't allow.
    metadata.postScriptName =
        firstName(face, {kPostScriptNameId}, FT_IS_SFNT(face) ? nullptr : FT_Get_Postscript_Name(face));
    metadata.familyName = firstName(face, {kTypographicFamilyId, kFamilyId}, face->family_name);
    metadata.styleName = firstName(face, {kTypographicStyleId, kStyleId}, face->style_name);
    if (metadata.styleName.isEmpty())
        metadata.styleName = u"Regular"_s;
    metadata.fullName = fullNameOf(face);
    metadata.glyphCount = glyphCountOf(face);
    metadata.fileSize = FontFiles::formatFileSize(file->size());
    metadata.fileType = FontFiles::fileTypeName(path);
    metadata.variationAxes = axesOf(face);
    return metadata;
}
