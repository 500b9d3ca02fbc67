#include "FontMetadata.h"

#include "FreeTypeLibrary.h"

#include FT_MULTIPLE_MASTERS_H
#include FT_TYPE1_TABLES_H

#include <QFile>
#include <QLocale>
#include <QtEndian>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr FT_UInt kFamilyId = 1;
constexpr FT_UInt kStyleId = 2;
constexpr FT_UInt kFullNameId = 4;
constexpr FT_UInt kTypographicFamilyId = 16;
constexpr FT_UInt kTypographicStyleId = 17;

QString firstName(FT_Face face, std::initializer_list<FT_UInt> ids, const char *fallback)
{
    for (const FT_UInt id : ids) {
        QString name = FreeType::sfntName(face, id);
        if (!name.isEmpty())
            return name;
    }
    return fallback ? QString::fromUtf8(fallback) : QString();
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

QString fullNameOf(FT_Face face, const QString &family, const QString &style)
{
    QString name = FreeType::sfntName(face, kFullNameId);
    if (!name.isEmpty())
        return name;
    PS_FontInfoRec info{};
    if (FT_Get_PS_Font_Info(face, &info) == 0 && info.full_name) // Type 1: no name table
        return QString::fromLatin1(info.full_name);
    return style.isEmpty() ? family : family + u' ' + style;
}

QList<VariationAxis> axesOf(FT_Face face)
{
    QList<VariationAxis> axes;
    if (!FT_HAS_MULTIPLE_MASTERS(face))
        return axes;
    FT_MM_Var *variations = nullptr;
    if (FT_Get_MM_Var(face, &variations) != 0 || !variations)
        return axes;
    for (FT_UInt i = 0; i < variations->num_axis; ++i) {
        const FT_Var_Axis &axis = variations->axis[i];
        // The display name is the name-table string; an axis without one is left out.
        const QString name = FreeType::sfntName(face, axis.strid);
        if (name.isEmpty())
            continue;
        const auto id = static_cast<quint32>(axis.tag);
        const char tag[4] = {static_cast<char>(id >> 24), static_cast<char>((id >> 16) & 255),
                             static_cast<char>((id >> 8) & 255), static_cast<char>(id & 255)};
        axes.append({id, name, QString::fromLatin1(tag, 4), axis.minimum / 65536.0, axis.maximum / 65536.0,
                     axis.def / 65536.0});
    }
    FT_Done_MM_Var(FreeType::threadLibrary(), variations);
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
    int precision = 0;
    if (bytes >= 1'000'000'000)
        precision = 2;
    else if (bytes >= 1'000'000)
        precision = 1;
    return QLocale().formattedDataSize(bytes, precision, QLocale::DataSizeSIFormat);
}

bool tablesFitInside(const QByteArray &data)
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
    }
    const quint32 version = read32(directory);
    const bool sfnt = version == 0x00010000 || version == 0x4F54544F /* OTTO */ || version == 0x74727565 /* true */;
    if (!sfnt)
        return true; // not a table-based format (suitcase, Type 1): FreeType decides
    if (directory + 12 > size)
        return false;
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
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray data = file.readAll();
    if (data.isEmpty() || !FontFiles::tablesFitInside(data))
        return std::nullopt;

    FaceHolder holder;
    if (FT_New_Memory_Face(FreeType::threadLibrary(), reinterpret_cast<const FT_Byte *>(data.constData()),
                           static_cast<FT_Long>(data.size()), 0, &holder.face) != 0)
        return std::nullopt;
    FT_Face face = holder.face;

    FontMetadata metadata;
    if (const char *postScript = FT_Get_Postscript_Name(face))
        metadata.postScriptName = QString::fromLatin1(postScript);
    // From the name table ourselves: FreeType's own family and style strings turn
    // every non-ASCII letter of a Mac Roman record into "?".
    metadata.familyName = firstName(face, {kTypographicFamilyId, kFamilyId}, face->family_name);
    metadata.styleName = firstName(face, {kTypographicStyleId, kStyleId}, face->style_name);
    if (metadata.styleName.isEmpty())
        metadata.styleName = u"Regular"_s;
    metadata.fullName = fullNameOf(face, metadata.familyName, metadata.styleName);
    metadata.glyphCount = face->num_glyphs;

    struct stat info{};
    metadata.fileSize = ::stat(QFile::encodeName(path).constData(), &info) == 0
        ? FontFiles::formatFileSize(static_cast<qint64>(info.st_size))
        : u"Unknown"_s;
    metadata.fileType = FontFiles::fileTypeName(path);
    metadata.variationAxes = axesOf(face);
    return metadata;
}
