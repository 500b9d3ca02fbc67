// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// What the catalogue knows of one face of one font file: a .ttc gives one record per
// face, a variable font one record listing its named instances.
struct FaceRecord
{
    enum class Classification { Unknown, Serif, SansSerif, SlabSerif, Script, Display, Monospace, Symbol };
    enum class Outline { TrueType, Cff, Cff2, BitmapOnly, Other };

    // Where
    QString path;
    int faceIndex = 0;
    qint64 size = 0;
    qint64 modified = 0; // seconds since the epoch

    // Names, by the metadata reader's rules: typographic family and style first.
    QString family;
    QString style;
    QString fullName;
    QString postScriptName;

    // Kind
    int weight = 400; // OS/2 weight class
    int width = 5;    // OS/2 width class, 1 (ultra-condensed) to 9 (ultra-expanded)
    bool italic = false;
    bool monospaced = false;
    Classification classification = Classification::Unknown;

    // Makers
    QString foundry;  // name 8
    QString designer; // name 9
    QString vendorId; // OS/2, trimmed
    QString version;  // name 5
    QString licence;  // name 13
    QString licenceUrl; // name 14

    // Technology
    Outline outline = Outline::Other;
    QStringList axes;           // variation axis tags
    QStringList namedInstances; // their names
    QStringList colourFormats;  // "COLR", "SVG", "sbix", "CBDT"
    qint64 glyphCount = 0;

    // Coverage
    QList<QPair<char32_t, char32_t>> codePoints; // mapped code points, as inclusive ranges
    QStringList languages; // fontconfig's orthographies this face covers
    QStringList scripts;   // OpenType script tags of GSUB and GPOS

    bool covers(char32_t codePoint) const;
    friend bool operator==(const FaceRecord &, const FaceRecord &) = default;
};
