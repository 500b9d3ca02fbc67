// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontMetadata.h"

#include "FaceTables.h"
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


using namespace FaceTables;

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

namespace {

enum class Directory { Fits, Broken, NotTables };

// A table directory at `directory`: there, and every table it lists inside the data.
Directory checkDirectory(QByteArrayView data, quint64 directory)
{
    const auto size = static_cast<quint64>(data.size());
    const auto *bytes = reinterpret_cast<const uchar *>(data.constData());
    auto read32 = [&](quint64 offset) { return qFromBigEndian<quint32>(bytes + offset); };
    // The face's offset comes from the file: checked before anything is read there.
    if (directory + 12 > size)
        return Directory::Broken;
    const quint32 version = read32(directory);
    const bool sfnt = version == 0x00010000 || version == 0x4F54544F /* OTTO */ || version == 0x74727565 /* true */;
    if (!sfnt)
        return Directory::NotTables;
    const quint16 tableCount = qFromBigEndian<quint16>(bytes + directory + 4);
    if (directory + 12 + 16ull * tableCount > size)
        return Directory::Broken;
    for (quint16 i = 0; i < tableCount; ++i) {
        const quint64 record = directory + 12 + 16ull * i;
        if (static_cast<quint64>(read32(record + 8)) + read32(record + 12) > size)
            return Directory::Broken;
    }
    return Directory::Fits;
}

bool isCollection(QByteArrayView data)
{
    return data.size() >= 12 && qFromBigEndian<quint32>(data.constData()) == 0x74746366; // 'ttcf'
}

} // namespace

bool tablesFitInside(QByteArrayView data)
{
    if (data.size() < 12)
        return false;
    quint64 directory = 0;
    if (isCollection(data)) { // the first face's directory
        if (data.size() < 16)
            return false;
        directory = qFromBigEndian<quint32>(data.constData() + 12);
    }
    // Not a table-based format (suitcase, Type 1): FreeType decides.
    return checkDirectory(data, directory) != Directory::Broken;
}

std::optional<QList<int>> collectionFaces(QByteArrayView data)
{
    if (!isCollection(data))
        return std::nullopt;
    const auto size = static_cast<quint64>(data.size());
    // The count is the header's word: only the offsets the file holds are looked at, so
    // a header claiming 65,535 faces costs what the file is, not 65,535 attempts.
    const quint64 claimed = qFromBigEndian<quint32>(data.constData() + 8);
    const quint64 held = size >= 12 ? (size - 12) / 4 : 0;
    QList<int> faces;
    for (quint64 index = 0; index < std::min<quint64>({claimed, held, 0x10000}); ++index) {
        const quint64 directory = qFromBigEndian<quint32>(data.constData() + 12 + 4 * index);
        if (checkDirectory(data, directory) == Directory::Fits)
            faces.append(int(index));
    }
    return faces;
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
    const FaceNames names = namesOf(face);
    metadata.postScriptName = names.postScriptName;
    metadata.familyName = names.family;
    metadata.styleName = names.style;
    metadata.fullName = names.fullName;
    metadata.glyphCount = glyphCountOf(face);
    metadata.fileSize = FontFiles::formatFileSize(file->size());
    metadata.fileType = FontFiles::fileTypeName(path);
    metadata.variationAxes = axesOf(face);
    return metadata;
}
