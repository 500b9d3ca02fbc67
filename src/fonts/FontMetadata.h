// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>

#include <optional>

// One variation axis of a variable font, in the font's own terms.
struct VariationAxis
{
    quint32 id = 0;    // the four tag bytes, first character in the top byte
    QString name;      // display name from the font's name table
    QString tag;       // "wght", "opsz", ...
    double minValue = 0;
    double maxValue = 0;
    double defaultValue = 0;

    friend bool operator==(const VariationAxis &, const VariationAxis &) = default;
};

// What the preview pane shows about one font file, read with FreeType from the
// file's own bytes (never from an installed font of the same name).
struct FontMetadata
{
    QString postScriptName;
    QString familyName;
    QString styleName; // "Regular" when the font gives none
    QString fullName;
    qint64 glyphCount = 0;
    QString fileSize;  // as file managers show sizes
    QString fileType;  // from the extension alone
    QList<VariationAxis> variationAxes;

    // Collections and suitcases give their first face. No value for a file that can't
    // be read or isn't a font (empty, truncated, another format). Never logs.
    static std::optional<FontMetadata> load(const QString &path);

    friend bool operator==(const FontMetadata &, const FontMetadata &) = default;
};

namespace FontFiles {

// "TrueType Font", "OpenType Font", ... by the lower-cased extension; "Font File" otherwise.
QString fileTypeName(const QString &path);
// Decimal units, precision by magnitude: "999 bytes", "1 kB", "1.2 MB", "5.37 GB".
QString formatFileSize(qint64 bytes);
// Whether every table the font's directory lists lies inside the data (first face).
bool tablesFitInside(QByteArrayView data);
// A collection file's (.ttc) real faces: the indices whose table directory is there and
// whose tables lie inside the file, however many its header claims. None for a file that
// is not a collection.
std::optional<QList<int>> collectionFaces(QByteArrayView data);

} // namespace FontFiles
