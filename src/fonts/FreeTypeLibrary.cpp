// SPDX-License-Identifier: GPL-3.0-or-later
#include "FreeTypeLibrary.h"

#include <algorithm>

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H

#include <QStringDecoder>

#include <array>
#include <optional>
#include <utility>

namespace FreeType {

namespace {

struct ThreadLibrary
{
    ThreadLibrary() { FT_Init_FreeType(&library); }
    ~ThreadLibrary()
    {
        if (library)
            FT_Done_FreeType(library);
    }
    FT_Library library = nullptr;
};

// Mac OS Roman, bytes 0x80 to 0xFF.
constexpr std::array<char16_t, 128> kMacRoman{
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7};

QString decodeUtf16BigEndian(const FT_SfntName &name)
{
    QString text(qsizetype(name.string_len / 2), Qt::Uninitialized);
    char16_t *out = reinterpret_cast<char16_t *>(text.data());
    for (FT_UInt i = 0; i + 1 < name.string_len; i += 2)
        *out++ = static_cast<char16_t>((name.string[i] << 8) | name.string[i + 1]);
    return text;
}

QString decodeMacRoman(const FT_SfntName &name)
{
    QString text(qsizetype(name.string_len), Qt::Uninitialized);
    char16_t *out = reinterpret_cast<char16_t *>(text.data());
    for (FT_UInt i = 0; i < name.string_len; ++i) {
        const FT_Byte byte = name.string[i];
        *out++ = byte < 0x80 ? static_cast<char16_t>(byte) : kMacRoman[byte - 0x80];
    }
    return text;
}

// Legacy Windows records (3,2 to 3,6) hold the bytes of a multi-byte encoding; some
// fonts pad each single byte to 16 bits. These encodings never use a zero byte in
// text, so dropping zeros reads both forms.
QByteArray legacyWindowsBytes(const FT_SfntName &name)
{
    QByteArray bytes(reinterpret_cast<const char *>(name.string), static_cast<qsizetype>(name.string_len));
    bytes.removeIf([](char byte) { return byte == 0; });
    return bytes;
}

// The ICU name of a record's legacy encoding; none for Unicode records and for
// encodings we can't decode.
const char *legacyEncoding(const FT_SfntName &name)
{
    if (name.platform_id == TT_PLATFORM_MICROSOFT) {
        switch (name.encoding_id) {
        case TT_MS_ID_SJIS: return "Shift_JIS";
        case TT_MS_ID_PRC: return "GBK";
        case TT_MS_ID_BIG_5: return "Big5";
        case TT_MS_ID_WANSUNG: return "windows-949";
        case TT_MS_ID_JOHAB: return "Johab";
        default: return nullptr;
        }
    }
    if (name.platform_id == TT_PLATFORM_MACINTOSH) {
        switch (name.encoding_id) {
        case TT_MAC_ID_JAPANESE: return "Shift_JIS";
        case TT_MAC_ID_TRADITIONAL_CHINESE: return "Big5";
        case TT_MAC_ID_KOREAN: return "EUC-KR";
        case TT_MAC_ID_SIMPLIFIED_CHINESE: return "GB2312";
        default: return nullptr;
        }
    }
    return nullptr;
}

bool isUnicode(const FT_SfntName &name)
{
    return name.platform_id == TT_PLATFORM_APPLE_UNICODE ||
           (name.platform_id == TT_PLATFORM_MICROSOFT &&
            (name.encoding_id == TT_MS_ID_SYMBOL_CS || name.encoding_id == TT_MS_ID_UNICODE_CS ||
             name.encoding_id == TT_MS_ID_UCS_4));
}

// The record's text; none when its encoding is one we can't decode.
std::optional<QString> decode(const FT_SfntName &name)
{
    if (isUnicode(name))
        return decodeUtf16BigEndian(name);
    if (name.platform_id == TT_PLATFORM_MACINTOSH && name.encoding_id == TT_MAC_ID_ROMAN)
        return decodeMacRoman(name);
    const char *encoding = legacyEncoding(name);
    if (!encoding)
        return std::nullopt;
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless);
    if (!decoder.isValid())
        return std::nullopt;
    const QByteArray bytes = name.platform_id == TT_PLATFORM_MICROSOFT
        ? legacyWindowsBytes(name)
        : QByteArray(reinterpret_cast<const char *>(name.string), static_cast<qsizetype>(name.string_len));
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

// English (US) Windows, then English Mac, then any other English, then the rest in
// table order.
int languageRank(const FT_SfntName &name)
{
    if (name.platform_id == TT_PLATFORM_MICROSOFT && name.language_id == TT_MS_LANGID_ENGLISH_UNITED_STATES)
        return 0;
    if (name.platform_id == TT_PLATFORM_MACINTOSH && name.language_id == TT_MAC_LANGID_ENGLISH)
        return 1;
    if (name.platform_id == TT_PLATFORM_MICROSOFT && (name.language_id & 0x3FF) == 0x09)
        return 2;
    return 3;
}

// Control characters (one style read "\x7f") are no part of a name.
// Unicode's control characters are exactly these two ranges: no property lookup.
QString withoutControls(QString text)
{
    const auto isControl = [](QChar c) { return c.unicode() <= 0x1F || (c.unicode() >= 0x7F && c.unicode() <= 0x9F); };
    if (std::any_of(text.cbegin(), text.cend(), isControl))
        text.removeIf(isControl);
    return text;
}

// Within a language rank, a record in Unicode goes before one in a legacy encoding.
int rankOf(const FT_SfntName &name)
{
    return languageRank(name) * 2 + (isUnicode(name) ? 0 : 1);
}

// The record's text without control characters; empty when it can't be decoded or
// holds nothing else.
QString usableText(const FT_SfntName &name)
{
    std::optional<QString> text = decode(name);
    return text ? withoutControls(std::move(*text)) : QString();
}

} // namespace

FT_Library threadLibrary()
{
    thread_local ThreadLibrary library;
    return library.library;
}

QString sfntName(FT_Face face, FT_UInt nameId)
{
    // One walk, no sorting: the best-ranked record that decodes to something.
    std::optional<std::pair<int, QString>> best;
    const FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    for (FT_UInt i = 0; i < count; ++i) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(face, i, &name) != 0 || name.name_id != nameId)
            continue;
        const int rank = rankOf(name);
        if (best && best->first <= rank)
            continue;
        QString text = usableText(name);
        if (!text.isEmpty())
            best = std::pair(rank, std::move(text));
    }
    return best ? best->second : QString();
}

NameTable::NameTable(FT_Face face)
    : m_face(face)
{
    const FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    m_records.reserve(count);
    for (FT_UInt i = 0; i < count; ++i) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(face, i, &name) != 0)
            continue;
        m_records.push_back({name.name_id, rankOf(name), i});
    }
    std::stable_sort(m_records.begin(), m_records.end(), [](const Record &a, const Record &b) {
        return a.nameId != b.nameId ? a.nameId < b.nameId : a.rank < b.rank;
    });
}

QString NameTable::name(FT_UInt nameId) const
{
    auto at = std::lower_bound(m_records.cbegin(), m_records.cend(), nameId,
                               [](const Record &r, FT_UInt id) { return r.nameId < id; });
    for (; at != m_records.cend() && at->nameId == nameId; ++at) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(m_face, at->index, &name) != 0)
            continue;
        QString text = usableText(name);
        if (!text.isEmpty())
            return text;
    }
    return {};
}

} // namespace FreeType
