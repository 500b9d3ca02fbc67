// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "MappedFile.h"

#include <QColor>
#include <QHash>
#include <QImage>
#include <QList>
#include <QPainterPath>
#include <QPointF>
#include <QString>

#include <memory>

class QPainter;
struct hb_face_t;
struct hb_font_t;
struct FT_FaceRec_;

// A named instance of a variable font ("Bold", "Condensed Light"), from its fvar table.
struct NamedInstance
{
    QString name;
    QHash<quint32, double> values; // by axis tag
};

// One glyph placed on a line, in font units; x grows rightwards, y downwards.
struct PlacedGlyph
{
    quint32 glyph = 0;
    double x = 0;
    double y = 0;
    double advance = 0;
    qsizetype cluster = 0; // UTF-16 index of the text it comes from
};

// A line of shaped text in visual order, its left end at x 0 on the baseline.
struct ShapedLine
{
    QList<PlacedGlyph> glyphs;
    double width = 0;        // font units
    qsizetype textStart = 0; // the text range the line shows
    qsizetype textEnd = 0;
};

// Draws text from a font file's own bytes, never from an installed font of the same
// name. HarfBuzz shapes (kerning, ligatures, marks, right-to-left and complex scripts)
// and gives each glyph's outline, which becomes a QPainterPath in font units, kept per
// glyph and per axis setting and painted at any size. Colour layers are painted from
// their outlines; glyphs with only bitmaps (PNG or bitmap strikes) are rasterised by
// FreeType. Interface thread only: it is not thread-safe.
class SampleRenderer
{
public:
    // Empty when the bytes are not a font HarfBuzz can read (or have no glyphs). A
    // collection file (.ttc) draws the face of that index.
    static std::unique_ptr<SampleRenderer> open(std::shared_ptr<const MappedFile> file, int faceIndex = 0);
    ~SampleRenderer();
    SampleRenderer(const SampleRenderer &) = delete;
    SampleRenderer &operator=(const SampleRenderer &) = delete;

    // The file changed on disk since it was mapped (truncated, rewritten in place): from
    // then on nothing more is read from it, every call draws or shapes nothing, and the
    // owner opens the file anew.
    bool fileChanged() const;

    double unitsPerEm() const { return m_unitsPerEm; }
    // Above and below the baseline (both positive), and the gap between lines.
    double ascent() const { return m_ascent; }
    double descent() const { return m_descent; }
    double lineHeight() const { return m_ascent + m_descent + m_lineGap; }

    // The font's substitution and positioning features, unique, in tag order.
    QList<quint32> featureTags() const;
    // The name the font itself gives a stylistic set or character variant (its feature
    // parameters' UI name, in the user's language when it has one); empty when none.
    QString featureName(quint32 tag) const;
    // Whether HarfBuzz applies the feature unless told otherwise.
    static bool isOnByDefault(quint32 tag);
    QList<NamedInstance> namedInstances() const;

    // The whole setting: axes not given take their defaults. Unchanged settings cost nothing.
    void setVariations(const QHash<quint32, double> &values);
    // Features switched away from HarfBuzz's defaults (tag, on or off).
    void setFeatures(const QList<QPair<quint32, bool>> &features);

    // Shapes one paragraph (no line breaks inside) into lines no wider than `maxWidth`
    // font units, broken after spaces (or inside a word too long for a line). A
    // `maxWidth` of 0 or less gives one line.
    QList<ShapedLine> layout(const QString &paragraph, double maxWidth = 0) const;

    // Paints `line` with its baseline's left end at `origin`, `pixelSize` pixels to the em.
    void paint(QPainter &painter, const ShapedLine &line, QPointF origin, double pixelSize, const QColor &colour);

    // The outline of one glyph at the current setting, in font units, y downwards.
    const QPainterPath &outline(quint32 glyph);

private:
    struct ColourLayer
    {
        quint32 glyph;
        QColor colour; // invalid: the text colour
    };
    struct Bitmap
    {
        QImage image;
        QPointF offset; // from the glyph's origin, in the image's pixels
        double pixelsPerEm = 0;
    };
    struct OutlineCache
    {
        QList<double> setting;
        QHash<quint32, QPainterPath> outlines;
    };

    SampleRenderer(std::shared_ptr<const MappedFile> file, hb_face_t *face, hb_font_t *font);
    const QList<ColourLayer> &colourLayers(quint32 glyph);
    const Bitmap *bitmap(quint32 glyph, double pixelSize);
    bool openFreeType();
    void paintGlyph(QPainter &painter, quint32 glyph, QPointF at, double scale, double pixelSize,
                    const QColor &colour);

    std::shared_ptr<const MappedFile> m_file;
    hb_face_t *m_face;
    hb_font_t *m_font;
    FT_FaceRec_ *m_ftFace = nullptr; // opened for the first bitmap glyph
    bool m_ftTried = false;
    int m_faceIndex = 0;
    mutable bool m_fileChanged = false;
    double m_unitsPerEm = 1000;
    double m_ascent = 0;
    double m_descent = 0;
    double m_lineGap = 0;
    bool m_hasLayers = false;
    bool m_hasBitmaps = false;
    QList<double> m_setting; // current design coordinates, in fvar order
    QList<QPair<quint32, bool>> m_features;
    // Outlines per axis setting, most recently used first: sliding back and forth,
    // or resetting to the defaults, finds its outlines again.
    QList<OutlineCache> m_outlines;
    QHash<quint32, QList<ColourLayer>> m_layers;
    QHash<quint64, Bitmap> m_bitmaps; // by glyph and pixel size
};
