// SPDX-License-Identifier: GPL-3.0-or-later
#include "FaceReader.h"

#include "FaceTables.h"
#include "FreeTypeLibrary.h"
#include "MappedFile.h"

#include FT_ADVANCES_H
#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <QFileInfo>
#include <QDateTime>

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <array>
#include <vector>
#include <memory>

using namespace Qt::StringLiterals;
using namespace FaceTables;

namespace {

constexpr FT_UInt kVersionId = 5;
constexpr FT_UInt kManufacturerId = 8;
constexpr FT_UInt kDesignerId = 9;
constexpr FT_UInt kLicenceId = 13;
constexpr FT_UInt kLicenceUrlId = 14;

// A set of characters as 256-character pages, each a bitmap, in page order: what
// fontconfig keeps, so a subset test is a few word operations per page.
struct PageSet
{
    using Bits = std::array<quint32, 8>;
    std::vector<quint32> numbers; // ascending
    std::vector<Bits> pages;

    const Bits *page(quint32 number) const
    {
        const auto at = std::lower_bound(numbers.cbegin(), numbers.cend(), number);
        return at != numbers.cend() && *at == number ? &pages[size_t(at - numbers.cbegin())] : nullptr;
    }
    // Every character of `other` is here.
    bool contains(const PageSet &other) const
    {
        for (size_t i = 0; i < other.numbers.size(); ++i) {
            const Bits *mine = page(other.numbers[i]);
            if (!mine)
                return false;
            for (size_t w = 0; w < 8; ++w) {
                if (other.pages[i][w] & ~(*mine)[w])
                    return false;
            }
        }
        return true;
    }
};

PageSet pageSetOf(const QList<QPair<char32_t, char32_t>> &ranges)
{
    PageSet set;
    for (const auto &[first, last] : ranges) {
        for (quint32 c = first; c <= last && c <= 0x10FFFF;) {
            const quint32 number = c >> 8;
            if (set.numbers.empty() || set.numbers.back() != number) {
                set.numbers.push_back(number);
                set.pages.push_back({});
            }
            PageSet::Bits &bits = set.pages.back();
            const quint32 end = std::min<quint32>(last, (number << 8) | 0xFF);
            for (; c <= end; ++c) { // a whole word at a time where the range allows
                if ((c & 31) == 0 && c + 31 <= end) {
                    bits[(c & 0xFF) >> 5] = ~0u;
                    c += 31;
                } else {
                    bits[(c & 0xFF) >> 5] |= 1u << (c & 31);
                }
            }
        }
    }
    return set;
}

// fontconfig's orthographies, read once: the languages and the characters each needs.
struct Orthography
{
    QString language;
    PageSet characters;
};

const QList<Orthography> &orthographies()
{
    static const QList<Orthography> all = [] {
        QList<Orthography> list;
        FcStrSet *languages = FcGetLangs();
        FcStrList *each = FcStrListCreate(languages);
        while (const FcChar8 *language = FcStrListNext(each)) {
            const FcCharSet *characters = FcLangGetCharSet(language);
            if (!characters)
                continue;
            Orthography orthography{QString::fromUtf8(reinterpret_cast<const char *>(language)), {}};
            FcChar32 map[FC_CHARSET_MAP_SIZE];
            FcChar32 next = 0;
            for (FcChar32 base = FcCharSetFirstPage(characters, map, &next); base != FC_CHARSET_DONE;
                 base = FcCharSetNextPage(characters, map, &next)) {
                PageSet::Bits bits{};
                std::copy(std::begin(map), std::end(map), bits.begin());
                orthography.characters.numbers.push_back(base >> 8);
                orthography.characters.pages.push_back(bits);
            }
            list.append(std::move(orthography));
        }
        FcStrListDone(each);
        FcStrSetDestroy(languages);
        return list;
    }();
    return all;
}

// CJK languages fontconfig grants only to the one a font's code pages name (OS/2
// ulCodePageRange1 bits 17 to 20), so a Japanese font isn't listed as Korean; a font
// naming several of them (the big pan-CJK families) is granted each it covers.
struct Exclusive
{
    int bit;
    const char *language;
};
constexpr Exclusive kExclusive[] = {{17, "ja"}, {18, "zh-cn"}, {19, "ko"}, {20, "zh-tw"}};

bool isExclusive(const QString &language)
{
    return std::any_of(std::begin(kExclusive), std::end(kExclusive),
                       [&](const Exclusive &e) { return language == QLatin1StringView(e.language); });
}

QStringList languagesOf(const QList<QPair<char32_t, char32_t>> &ranges, const QString &exclusiveLanguage)
{
    const PageSet face = pageSetOf(ranges);
    // fontconfig keeps the CJK languages whose orthography spans as many pages as the one
    // the font names (its comparison of the pages themselves never takes effect), so a
    // Japanese font is Traditional Chinese too: done the same here, or a question would
    // answer otherwise than fc-list.
    qsizetype exclusivePages = -1;
    for (const Orthography &orthography : orthographies()) {
        if (orthography.language == exclusiveLanguage)
            exclusivePages = qsizetype(orthography.characters.numbers.size());
    }
    QStringList covered;
    for (const Orthography &orthography : orthographies()) {
        if (exclusivePages >= 0 && isExclusive(orthography.language)
            && qsizetype(orthography.characters.numbers.size()) != exclusivePages)
            continue;
        if (face.contains(orthography.characters))
            covered.append(orthography.language);
    }
    return covered;
}

// The face's character map as fontconfig reads it, in one walk.
struct CharacterMap
{
    // The characters mapped to a glyph, as ranges: the Unicode map, then a symbol map
    // (Wingdings, Webdings), whose U+F000 to U+F0FF are also taken as U+0000 to U+00FF,
    // as Windows does.
    QList<QPair<char32_t, char32_t>> codePoints;
    // Every glyph the first usable map reaches advances alike, as fontconfig measures it
    // (its "mono" spacing): unscaled, two the same when they differ by at most a 33rd.
    // Many monospaced fonts (FreeMono, Inconsolata) don't set the fixed-pitch flag.
    bool advancesAlike = true;
};

CharacterMap characterMapOf(FT_Face face)
{
    CharacterMap map;
    FT_Int32 advanceFlags = FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH | FT_LOAD_NO_HINTING | FT_LOAD_NO_SCALE;
    if (FT_IS_SCALABLE(face))
        advanceFlags |= FT_LOAD_NO_BITMAP;
    const auto alike = [](FT_Pos a, FT_Pos b) { return std::abs(a - b) * 33 <= std::max(std::abs(a), std::abs(b)); };
    bool measuring = true; // the first usable map only
    std::vector<char32_t> points;
    for (const FT_Encoding encoding : {FT_ENCODING_UNICODE, FT_ENCODING_MS_SYMBOL}) {
        if (FT_Select_Charmap(face, encoding) != 0)
            continue;
        FT_Pos first = 0;
        FT_UInt glyph = 0;
        for (FT_ULong c = FT_Get_First_Char(face, &glyph); glyph != 0; c = FT_Get_Next_Char(face, c, &glyph)) {
            FT_Fixed advance = 0;
            if (measuring && map.advancesAlike && FT_Get_Advance(face, glyph, advanceFlags, &advance) == 0 && advance != 0) {
                if (first == 0)
                    first = advance;
                else if (!alike(advance, first))
                    map.advancesAlike = false;
            }
            if (c > 0x10FFFF)
                continue;
            // A control character mapped to an empty glyph (many fonts map NUL and CR to
            // one) draws nothing: not a character the font has.
            if (c <= 0x1F
                && (FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0
                    || (face->glyph->format == FT_GLYPH_FORMAT_OUTLINE && face->glyph->outline.n_contours == 0)))
                continue;
            points.push_back(static_cast<char32_t>(c));
            if (encoding == FT_ENCODING_MS_SYMBOL && c >= 0xF000 && c <= 0xF0FF)
                points.push_back(static_cast<char32_t>(c - 0xF000));
        }
        measuring = false;
    }
    if (!std::is_sorted(points.begin(), points.end())) // a symbol map's Latin-1 copies
        std::sort(points.begin(), points.end());
    points.erase(std::unique(points.begin(), points.end()), points.end());
    for (const char32_t point : points) {
        if (!map.codePoints.isEmpty() && map.codePoints.last().second + 1 == point)
            map.codePoints.last().second = point;
        else
            map.codePoints.append({point, point});
    }
    return map;
}

FaceRecord::Classification classify(const QByteArray &os2, bool monospaced)
{
    using C = FaceRecord::Classification;
    if (os2.size() >= 42) {
        switch (static_cast<quint8>(os2.at(30))) { // sFamilyClass, its class byte
        case 1: case 2: case 3: case 4: case 7: return monospaced ? C::Monospace : C::Serif;
        case 5: return monospaced ? C::Monospace : C::SlabSerif;
        case 8: return monospaced ? C::Monospace : C::SansSerif;
        case 9: return C::Display;
        case 10: return C::Script;
        case 12: return C::Symbol;
        default: break;
        }
        const auto family = static_cast<quint8>(os2.at(32)), serif = static_cast<quint8>(os2.at(33));
        switch (family) { // PANOSE
        case 2: // Latin text
            // PANOSE's own "monospaced" is not taken on its word: the glyphs say.
            if (monospaced)
                return C::Monospace;
            if (serif >= 11 && serif <= 15)
                return C::SansSerif;
            if (serif == 6)
                return C::SlabSerif;
            if (serif >= 2 && serif <= 10)
                return C::Serif;
            break;
        case 3: return C::Script;
        case 4: return C::Display;
        case 5: return C::Symbol;
        default: break;
        }
    }
    return monospaced ? C::Monospace : C::Unknown;
}

// The script tags of GSUB's and GPOS's script lists, read straight from the few bytes
// that hold them: nothing else of either table is needed, however long it is.
QStringList scriptsOf(FT_Face face)
{
    QStringList scripts;
    for (const FT_ULong table : {TTAG_GSUB, TTAG_GPOS}) {
        FT_ULong length = 0;
        if (FT_Load_Sfnt_Table(face, table, 0, nullptr, &length) != 0)
            continue;
        const auto bytesAt = [&](FT_ULong offset, FT_ULong size) {
            QByteArray bytes;
            if (size == 0 || offset + size > length)
                return bytes;
            bytes.resize(qsizetype(size));
            FT_ULong read = size;
            if (FT_Load_Sfnt_Table(face, table, offset, reinterpret_cast<FT_Byte *>(bytes.data()), &read) != 0)
                bytes.clear();
            return bytes;
        };
        const QByteArray header = bytesAt(0, 6);
        if (header.size() < 6 || read16(header, 0) != 1)
            continue; // a version this reader doesn't know, as HarfBuzz would skip it
        const FT_ULong list = read16(header, 4);
        const QByteArray count = list ? bytesAt(list, 2) : QByteArray();
        if (count.size() < 2)
            continue;
        const quint16 records = read16(count, 0);
        const QByteArray tags = bytesAt(list + 2, 6ul * records);
        if (tags.size() < 6 * qsizetype(records))
            continue; // runs past the table: no list at all
        for (quint16 i = 0; i < records; ++i) {
            const QString name = QString::fromLatin1(tags.constData() + 6 * i, 4).trimmed();
            if (!scripts.contains(name))
                scripts.append(name);
        }
    }
    scripts.sort();
    return scripts;
}

QStringList namedInstancesOf(FT_Face face, const FreeType::NameTable &table)
{
    QStringList names;
    const QByteArray fvar = sfntTable(face, TTAG_fvar);
    if (fvar.size() < 16)
        return names;
    const qsizetype first = read16(fvar, 4);
    const quint16 axes = read16(fvar, 8), axisSize = read16(fvar, 10);
    const quint16 count = read16(fvar, 12), instanceSize = read16(fvar, 14);
    const qsizetype start = first + qsizetype(axes) * axisSize;
    for (quint16 i = 0; i < count; ++i) {
        const qsizetype record = start + qsizetype(i) * instanceSize;
        if (record + 2 > fvar.size())
            break;
        const QString name = table.name(read16(fvar, record));
        if (!name.isEmpty())
            names.append(name);
    }
    return names;
}

FaceRecord recordOf(FT_Face face)
{
    FaceRecord r;
    const FreeType::NameTable table(face);
    const FaceNames names = namesOf(face, table);
    r.family = names.family;
    r.style = names.style;
    r.fullName = names.fullName;
    r.postScriptName = names.postScriptName;
    r.foundry = table.name(kManufacturerId);
    r.designer = table.name(kDesignerId);
    r.version = table.name(kVersionId);
    r.licence = table.name(kLicenceId);
    r.licenceUrl = table.name(kLicenceUrlId);

    const QByteArray os2 = sfntTable(face, TTAG_OS2);
    const QByteArray post = sfntTableHead(face, TTAG_post, 16); // its glyph names can run long
    const CharacterMap characters = characterMapOf(face);
    r.monospaced = (post.size() >= 16 && read32(post, 12) != 0) || FT_IS_FIXED_WIDTH(face) || characters.advancesAlike;
    if (os2.size() >= 64) {
        r.weight = read16(os2, 4);
        r.width = read16(os2, 6);
        const quint16 selection = read16(os2, 62);
        r.italic = (selection & 0x1) || (selection & 0x200);
        // Four characters, padded with spaces, or with NULs by some makers: neither is the vendor's.
        r.vendorId = QString::fromLatin1(os2.constData() + 58, 4).remove(QChar(0)).trimmed();
    } else {
        r.italic = face->style_flags & FT_STYLE_FLAG_ITALIC;
        r.weight = (face->style_flags & FT_STYLE_FLAG_BOLD) ? 700 : 400;
    }
    r.classification = classify(os2, r.monospaced);

    if (hasTable(face, TTAG_CFF2))
        r.outline = FaceRecord::Outline::Cff2;
    else if (hasTable(face, TTAG_CFF))
        r.outline = FaceRecord::Outline::Cff;
    else if (hasTable(face, TTAG_glyf))
        r.outline = FaceRecord::Outline::TrueType;
    else if (FT_IS_SFNT(face) || FT_HAS_FIXED_SIZES(face))
        r.outline = FaceRecord::Outline::BitmapOnly;
    for (const VariationAxis &axis : axesOf(face))
        r.axes.append(axis.tag);
    r.namedInstances = namedInstancesOf(face, table);
    const struct
    {
        FT_ULong tag;
        const char *name;
    } colours[] = {{FT_MAKE_TAG('C', 'O', 'L', 'R'), "COLR"}, {FT_MAKE_TAG('S', 'V', 'G', ' '), "SVG"},
                   {FT_MAKE_TAG('s', 'b', 'i', 'x'), "sbix"}, {FT_MAKE_TAG('C', 'B', 'D', 'T'), "CBDT"}};
    for (const auto &colour : colours) {
        if (hasTable(face, colour.tag))
            r.colourFormats.append(QString::fromLatin1(colour.name));
    }
    r.glyphCount = glyphCountOf(face);

    r.codePoints = characters.codePoints;
    QString exclusive;
    if (os2.size() >= 82) {
        const quint32 codePages = read32(os2, 78);
        for (const Exclusive &e : kExclusive) {
            if (!(codePages & (1u << e.bit)))
                continue;
            if (!exclusive.isEmpty()) { // a second one: none is exclusive
                exclusive.clear();
                break;
            }
            exclusive = QString::fromLatin1(e.language);
        }
    }
    r.languages = languagesOf(r.codePoints, exclusive);
    r.scripts = scriptsOf(face);
    return r;
}

} // namespace

bool FaceRecord::covers(char32_t codePoint) const
{
    const auto after = std::upper_bound(codePoints.cbegin(), codePoints.cend(), codePoint,
                                        [](char32_t c, const QPair<char32_t, char32_t> &range) { return c < range.first; });
    return after != codePoints.cbegin() && codePoint <= std::prev(after)->second;
}

namespace FaceReader {

QStringList languagesCovered(const QList<QPair<char32_t, char32_t>> &codePoints)
{
    return languagesOf(codePoints, {});
}

QList<FaceRecord> read(const QString &path)
{
    QList<FaceRecord> records;
    const std::shared_ptr<const MappedFile> file = MappedFile::open(path);
    if (!file || !FontFiles::tablesFitInside(file->bytes()))
        return records;
    FT_Library library = FreeType::threadLibrary();
    // A collection's faces are those its file really holds; any other file's, FreeType's count.
    const std::optional<QList<int>> collection = FontFiles::collectionFaces(file->bytes());
    QList<int> indices = collection.value_or(QList<int>());
    const QByteArrayView head = file->bytes().first(std::min<qsizetype>(4, file->size()));
    const bool singleSfnt = head == QByteArrayView("\0\1\0\0", 4) || head == "OTTO" || head == "true";
    if (!collection && singleSfnt) {
        indices.append(0); // one face: no need to ask FreeType to count them
    } else if (!collection) {
        FaceHolder probe;
        if (FT_New_Memory_Face(library, file->data(), static_cast<FT_Long>(file->size()), -1, &probe.face) != 0)
            return records;
        for (FT_Long index = 0; index < std::max<FT_Long>(1, probe.face->num_faces); ++index)
            indices.append(int(index));
    }
    for (const int index : std::as_const(indices)) {
        FaceHolder holder;
        if (FT_New_Memory_Face(library, file->data(), static_cast<FT_Long>(file->size()), index, &holder.face) != 0)
            continue;
        FaceRecord record = recordOf(holder.face);
        record.path = path;
        record.faceIndex = static_cast<int>(index);
        record.size = file->size();
        record.modified = file->modifiedSeconds();
        records.append(std::move(record));
    }
    return records;
}

} // namespace FaceReader
