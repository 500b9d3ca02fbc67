#include "FreeTypeLibrary.h"

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H

#include <array>

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
    QString text;
    text.reserve(name.string_len / 2);
    for (FT_UInt i = 0; i + 1 < name.string_len; i += 2)
        text.append(QChar(static_cast<char16_t>((name.string[i] << 8) | name.string[i + 1])));
    return text;
}

QString decodeMacRoman(const FT_SfntName &name)
{
    QString text;
    text.reserve(name.string_len);
    for (FT_UInt i = 0; i < name.string_len; ++i) {
        const FT_Byte byte = name.string[i];
        text.append(QChar(byte < 0x80 ? static_cast<char16_t>(byte) : kMacRoman[byte - 0x80]));
    }
    return text;
}

// Lower is better; -1 when we can't decode the record.
int preference(const FT_SfntName &name)
{
    if (name.platform_id == TT_PLATFORM_MICROSOFT)
        return name.language_id == TT_MS_LANGID_ENGLISH_UNITED_STATES ? 0 : 1;
    if (name.platform_id == TT_PLATFORM_APPLE_UNICODE)
        return 2;
    if (name.platform_id == TT_PLATFORM_MACINTOSH && name.encoding_id == TT_MAC_ID_ROMAN)
        return name.language_id == TT_MAC_LANGID_ENGLISH ? 3 : 4;
    return -1;
}

} // namespace

FT_Library threadLibrary()
{
    thread_local ThreadLibrary library;
    return library.library;
}

QString sfntName(FT_Face face, FT_UInt nameId)
{
    int best = -1;
    FT_SfntName bestName{};
    const FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    for (FT_UInt i = 0; i < count; ++i) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(face, i, &name) != 0 || name.name_id != nameId)
            continue;
        const int rank = preference(name);
        if (rank >= 0 && (best < 0 || rank < best)) {
            best = rank;
            bestName = name;
        }
    }
    if (best < 0)
        return {};
    // Strings are not terminated; their length is in bytes.
    return bestName.platform_id == TT_PLATFORM_MACINTOSH ? decodeMacRoman(bestName) : decodeUtf16BigEndian(bestName);
}

} // namespace FreeType
