// SPDX-License-Identifier: GPL-3.0-or-later
#include "SampleRenderer.h"

#include "LineBreaking.h"

#include "FreeTypeLibrary.h"

#include <QPainter>
#include <QLocale>
#include <QSet>

#include <hb-ot.h>
#include <hb.h>

#include FT_MULTIPLE_MASTERS_H

#include <algorithm>
#include <climits>
#include <numeric>

namespace {

constexpr qsizetype kSettingsKept = 8;

QString tagText(quint32 tag)
{
    char text[4];
    hb_tag_to_string(tag, text);
    return QString::fromLatin1(text, 4);
}

// Outlines arrive y-up in font units; paths are kept y-down, as Qt draws.
void moveTo(hb_draw_funcs_t *, void *path, hb_draw_state_t *, float x, float y, void *)
{
    static_cast<QPainterPath *>(path)->moveTo(x, -y);
}
void lineTo(hb_draw_funcs_t *, void *path, hb_draw_state_t *, float x, float y, void *)
{
    static_cast<QPainterPath *>(path)->lineTo(x, -y);
}
void quadraticTo(hb_draw_funcs_t *, void *path, hb_draw_state_t *, float cx, float cy, float x, float y, void *)
{
    static_cast<QPainterPath *>(path)->quadTo(cx, -cy, x, -y);
}
void cubicTo(hb_draw_funcs_t *, void *path, hb_draw_state_t *, float c1x, float c1y, float c2x, float c2y, float x,
             float y, void *)
{
    static_cast<QPainterPath *>(path)->cubicTo(c1x, -c1y, c2x, -c2y, x, -y);
}
void closePath(hb_draw_funcs_t *, void *path, hb_draw_state_t *, void *)
{
    static_cast<QPainterPath *>(path)->closeSubpath();
}

hb_draw_funcs_t *pathFuncs()
{
    static hb_draw_funcs_t *const funcs = [] {
        hb_draw_funcs_t *made = hb_draw_funcs_create();
        hb_draw_funcs_set_move_to_func(made, moveTo, nullptr, nullptr);
        hb_draw_funcs_set_line_to_func(made, lineTo, nullptr, nullptr);
        hb_draw_funcs_set_quadratic_to_func(made, quadraticTo, nullptr, nullptr);
        hb_draw_funcs_set_cubic_to_func(made, cubicTo, nullptr, nullptr);
        hb_draw_funcs_set_close_path_func(made, closePath, nullptr, nullptr);
        hb_draw_funcs_make_immutable(made);
        return made;
    }();
    return funcs;
}

QList<hb_ot_var_axis_info_t> axisInfos(hb_face_t *face)
{
    unsigned count = hb_ot_var_get_axis_count(face);
    QList<hb_ot_var_axis_info_t> axes(count);
    hb_ot_var_get_axis_infos(face, 0, &count, axes.data());
    axes.resize(count);
    return axes;
}

bool isSpaceRange(const QString &text, qsizetype from, qsizetype to)
{
    for (qsizetype i = from; i < to; ++i) {
        if (!text.at(i).isSpace())
            return false;
    }
    return from < to;
}

// A FreeType glyph bitmap as an image: colour as it is, grey levels as a mask to tint.
QImage imageOf(const FT_Bitmap &bitmap)
{
    const int width = static_cast<int>(bitmap.width);
    const int height = static_cast<int>(bitmap.rows);
    if (width == 0 || height == 0)
        return {};
    const bool colour = bitmap.pixel_mode == FT_PIXEL_MODE_BGRA;
    QImage image(width, height, colour ? QImage::Format_ARGB32_Premultiplied : QImage::Format_Alpha8);
    for (int row = 0; row < height; ++row) {
        const unsigned char *source = bitmap.buffer + static_cast<qptrdiff>(row) * bitmap.pitch;
        uchar *target = image.scanLine(row);
        if (colour) {
            // Premultiplied BGRA, as ARGB32 lies in memory on little-endian machines.
            for (int x = 0; x < width; ++x)
                reinterpret_cast<QRgb *>(target)[x] =
                    qRgba(source[4 * x + 2], source[4 * x + 1], source[4 * x], source[4 * x + 3]);
        } else if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO) {
            for (int x = 0; x < width; ++x)
                target[x] = (source[x / 8] & (0x80 >> (x % 8))) ? 255 : 0;
        } else if (bitmap.pixel_mode == FT_PIXEL_MODE_GRAY) {
            std::copy_n(source, width, target);
        } else {
            return {};
        }
    }
    return image;
}

} // namespace

const QPainterPath kNoOutline;

std::unique_ptr<SampleRenderer> SampleRenderer::open(std::shared_ptr<const MappedFile> file, int faceIndex)
{
    if (!file || file->size() > UINT_MAX || !file->isUnchanged())
        return nullptr;
    // The blob borrows the mapping, which the renderer keeps for as long as it lives.
    hb_blob_t *blob = hb_blob_create(reinterpret_cast<const char *>(file->data()),
                                     static_cast<unsigned>(file->size()), HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t *face = hb_face_create(blob, static_cast<unsigned>(std::max(0, faceIndex)));
    hb_blob_destroy(blob);
    if (hb_face_get_glyph_count(face) == 0) {
        hb_face_destroy(face);
        return nullptr;
    }
    auto renderer = std::unique_ptr<SampleRenderer>(new SampleRenderer(std::move(file), face, hb_font_create(face)));
    renderer->m_faceIndex = std::max(0, faceIndex);
    return renderer;
}

SampleRenderer::SampleRenderer(std::shared_ptr<const MappedFile> file, hb_face_t *face, hb_font_t *font)
    : m_file(std::move(file))
    , m_face(face)
    , m_font(font)
{
    m_unitsPerEm = hb_face_get_upem(face);
    hb_font_extents_t extents{};
    hb_font_get_h_extents(font, &extents);
    m_ascent = extents.ascender;
    m_descent = -extents.descender;
    m_lineGap = std::max<double>(0, extents.line_gap);
    if (m_ascent + m_descent <= 0) { // metrics missing or nonsense
        m_ascent = 0.8 * m_unitsPerEm;
        m_descent = 0.2 * m_unitsPerEm;
    }
    m_hasLayers = hb_ot_color_has_layers(face);
    hb_blob_t *ebdt = hb_face_reference_table(face, HB_TAG('E', 'B', 'D', 'T'));
    m_hasBitmaps = hb_ot_color_has_png(face) || hb_blob_get_length(ebdt) > 0;
    hb_blob_destroy(ebdt);
    for (const hb_ot_var_axis_info_t &axis : axisInfos(face))
        m_setting.append(axis.default_value);
    m_outlines.append(OutlineCache{m_setting, {}});
}

bool SampleRenderer::fileChanged() const
{
    // Once changed, always changed: the mapping may have pages that no longer exist.
    if (!m_fileChanged && !m_file->isUnchanged())
        m_fileChanged = true;
    return m_fileChanged;
}

SampleRenderer::~SampleRenderer()
{
    if (m_ftFace)
        FT_Done_Face(m_ftFace);
    hb_font_destroy(m_font);
    hb_face_destroy(m_face);
}

QList<quint32> SampleRenderer::featureTags() const
{
    if (fileChanged())
        return {};
    QSet<quint32> tags;
    for (const hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
        unsigned count = hb_ot_layout_table_get_feature_tags(m_face, table, 0, nullptr, nullptr);
        QList<hb_tag_t> found(count);
        hb_ot_layout_table_get_feature_tags(m_face, table, 0, &count, found.data());
        for (unsigned i = 0; i < count; ++i) {
            const QString text = tagText(found.at(i));
            // Registered tags are lower-case letters and digits; others are private.
            if (std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.isDigit() || (c >= u'a' && c <= u'z'); }))
                tags.insert(found.at(i));
        }
    }
    QList<quint32> sorted(tags.cbegin(), tags.cend());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

QString SampleRenderer::featureName(quint32 tag) const
{
    if (fileChanged())
        return {};
    unsigned index = 0;
    if (!hb_ot_layout_language_find_feature(m_face, HB_OT_TAG_GSUB, 0, HB_OT_LAYOUT_DEFAULT_LANGUAGE_INDEX, tag, &index)) {
        // Not in the default script's list: look through every feature record.
        const unsigned count = hb_ot_layout_table_get_feature_tags(m_face, HB_OT_TAG_GSUB, 0, nullptr, nullptr);
        QList<hb_tag_t> tags(count);
        unsigned got = count;
        hb_ot_layout_table_get_feature_tags(m_face, HB_OT_TAG_GSUB, 0, &got, tags.data());
        const qsizetype found = tags.indexOf(tag);
        if (found < 0)
            return {};
        index = static_cast<unsigned>(found);
    }
    hb_ot_name_id_t label = HB_OT_NAME_ID_INVALID;
    if (!hb_ot_layout_feature_get_name_ids(m_face, HB_OT_TAG_GSUB, index, &label, nullptr, nullptr, nullptr, nullptr)
        || label == HB_OT_NAME_ID_INVALID)
        return {};
    const hb_language_t language = hb_language_from_string(QLocale().bcp47Name().toUtf8().constData(), -1);
    unsigned size = hb_ot_name_get_utf16(m_face, label, language, nullptr, nullptr);
    if (size == 0)
        size = hb_ot_name_get_utf16(m_face, label, HB_LANGUAGE_INVALID, nullptr, nullptr);
    if (size == 0)
        return {};
    QList<uint16_t> text(size + 1);
    unsigned length = size + 1;
    if (hb_ot_name_get_utf16(m_face, label, language, &length, text.data()) == 0) {
        length = size + 1;
        hb_ot_name_get_utf16(m_face, label, HB_LANGUAGE_INVALID, &length, text.data());
    }
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(text.constData()), length).trimmed();
}

bool SampleRenderer::isOnByDefault(quint32 tag)
{
    // What HarfBuzz applies to horizontal text unless told otherwise, script shaping
    // features included.
    static const QSet<quint32> defaults = [] {
        QSet<quint32> tags;
        for (const char *name : {"abvf", "abvm", "abvs", "akhn", "blwf", "blwm", "blws", "calt", "ccmp", "cfar",
                                 "cjct", "clig", "curs", "dist", "fin2", "fin3", "fina", "half", "haln", "init",
                                 "isol", "kern", "liga", "locl", "ltra", "ltrm", "mark", "med2", "medi", "mkmk",
                                 "nukt", "pref", "pres", "pstf", "psts", "rclt", "rkrf", "rlig", "rphf", "rtla",
                                 "rtlm", "rvrn", "stch", "vatu"})
            tags.insert(hb_tag_from_string(name, 4));
        return tags;
    }();
    return defaults.contains(tag);
}

QList<NamedInstance> SampleRenderer::namedInstances() const
{
    if (fileChanged())
        return {};
    const QList<hb_ot_var_axis_info_t> axes = axisInfos(m_face);
    QList<NamedInstance> instances;
    const unsigned count = hb_ot_var_get_named_instance_count(m_face);
    for (unsigned index = 0; index < count; ++index) {
        NamedInstance instance;
        const hb_ot_name_id_t nameId = hb_ot_var_named_instance_get_subfamily_name_id(m_face, index);
        const hb_language_t english = hb_language_from_string("en", -1);
        // Asked without a buffer it gives the length; with one, it writes and gives what it wrote.
        unsigned length = hb_ot_name_get_utf16(m_face, nameId, english, nullptr, nullptr) + 1;
        QList<uint16_t> text(length);
        hb_ot_name_get_utf16(m_face, nameId, english, &length, text.data());
        instance.name = QString::fromUtf16(reinterpret_cast<const char16_t *>(text.constData()), length).trimmed();
        if (instance.name.isEmpty())
            instance.name = QStringLiteral("Instance %1").arg(index + 1);
        unsigned coordinateCount = static_cast<unsigned>(axes.size());
        QList<float> coordinates(axes.size());
        hb_ot_var_named_instance_get_design_coords(m_face, index, &coordinateCount, coordinates.data());
        for (qsizetype axis = 0; axis < axes.size(); ++axis)
            instance.values.insert(axes.at(axis).tag, axis < coordinateCount ? coordinates.at(axis) : axes.at(axis).default_value);
        instances.append(instance);
    }
    return instances;
}

void SampleRenderer::setVariations(const QHash<quint32, double> &values)
{
    if (fileChanged())
        return;
    const QList<hb_ot_var_axis_info_t> axes = axisInfos(m_face);
    QList<double> setting;
    QList<float> coordinates;
    for (const hb_ot_var_axis_info_t &axis : axes) {
        const double value = std::clamp<double>(values.value(axis.tag, axis.default_value), axis.min_value, axis.max_value);
        setting.append(value);
        coordinates.append(static_cast<float>(value));
    }
    if (setting == m_setting)
        return;
    m_setting = setting;
    // Every axis at once: axes left out would fall back to their defaults.
    hb_font_set_var_coords_design(m_font, coordinates.constData(), static_cast<unsigned>(coordinates.size()));
    const auto kept = std::find_if(m_outlines.begin(), m_outlines.end(),
                                   [&](const OutlineCache &cache) { return cache.setting == setting; });
    if (kept != m_outlines.end())
        std::rotate(m_outlines.begin(), kept, kept + 1);
    else
        m_outlines.prepend(OutlineCache{setting, {}});
    if (m_outlines.size() > kSettingsKept)
        m_outlines.removeLast();
    m_bitmaps.clear();
    if (m_ftFace && FT_HAS_MULTIPLE_MASTERS(m_ftFace)) {
        QList<FT_Fixed> fixed;
        for (const double value : setting)
            fixed.append(static_cast<FT_Fixed>(value * 65536.0));
        FT_Set_Var_Design_Coordinates(m_ftFace, static_cast<FT_UInt>(fixed.size()), fixed.data());
    }
}

void SampleRenderer::setFeatures(const QList<QPair<quint32, bool>> &features)
{
    m_features = features;
}

QList<ShapedLine> SampleRenderer::layout(const QString &paragraph, double maxWidth) const
{
    if (fileChanged())
        return {};
    hb_buffer_t *buffer = hb_buffer_create();
    hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t *>(paragraph.utf16()), static_cast<int>(paragraph.size()),
                        0, static_cast<int>(paragraph.size()));
    hb_buffer_guess_segment_properties(buffer);
    QList<hb_feature_t> features;
    for (const auto &[tag, on] : m_features)
        features.append(hb_feature_t{tag, on ? 1u : 0u, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
    hb_shape(m_font, buffer, features.constData(), static_cast<unsigned>(features.size()));

    unsigned count = 0;
    const hb_glyph_info_t *infos = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t *positions = hb_buffer_get_glyph_positions(buffer, &count);
    // Offsets from each glyph's pen position, so that lines can be placed afresh.
    QList<PlacedGlyph> shaped;
    shaped.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        shaped.append(PlacedGlyph{infos[i].codepoint, static_cast<double>(positions[i].x_offset),
                                  -static_cast<double>(positions[i].y_offset),
                                  static_cast<double>(positions[i].x_advance), infos[i].cluster});
    }
    hb_buffer_destroy(buffer);

    // Clusters in reading order with their widths.
    QList<qsizetype> starts;
    for (const PlacedGlyph &glyph : std::as_const(shaped))
        starts.append(glyph.cluster);
    std::sort(starts.begin(), starts.end());
    starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
    const auto clusterIndex = [&](qsizetype cluster) {
        return std::lower_bound(starts.cbegin(), starts.cend(), cluster) - starts.cbegin();
    };
    QList<double> widths(starts.size(), 0.0);
    for (const PlacedGlyph &glyph : std::as_const(shaped))
        widths[clusterIndex(glyph.cluster)] += glyph.advance;
    const auto clusterEnd = [&](qsizetype index) { return index + 1 < starts.size() ? starts.at(index + 1) : paragraph.size(); };

    QList<bool> spaces;
    spaces.reserve(starts.size());
    for (qsizetype i = 0; i < starts.size(); ++i)
        spaces.append(isSpaceRange(paragraph, starts.at(i), clusterEnd(i)));
    const QList<std::pair<qsizetype, qsizetype>> ranges = LineBreaking::breakLines(widths, spaces, maxWidth);

    QList<ShapedLine> lines;
    for (const auto &[first, last] : std::as_const(ranges)) {
        ShapedLine line;
        line.textStart = first < starts.size() ? starts.at(first) : paragraph.size();
        line.textEnd = last > first ? clusterEnd(last - 1) : line.textStart;
        // Spaces at a line's end take no room: they'd push right-to-left text aside.
        qsizetype inkLast = last;
        while (inkLast > first && isSpaceRange(paragraph, starts.at(inkLast - 1), clusterEnd(inkLast - 1)))
            --inkLast;
        const qsizetype from = first < starts.size() ? starts.at(first) : paragraph.size();
        const qsizetype to = inkLast > first ? clusterEnd(inkLast - 1) : from;
        double pen = 0;
        for (const PlacedGlyph &glyph : std::as_const(shaped)) {
            if (glyph.cluster < from || glyph.cluster >= to)
                continue;
            PlacedGlyph placed = glyph;
            placed.x = pen + glyph.x;
            line.glyphs.append(placed);
            pen += glyph.advance;
        }
        line.width = pen;
        lines.append(line);
    }
    return lines;
}

const QPainterPath &SampleRenderer::outline(quint32 glyph)
{
    if (fileChanged())
        return kNoOutline;
    QHash<quint32, QPainterPath> &outlines = m_outlines.first().outlines;
    auto found = outlines.find(glyph);
    if (found == outlines.end()) {
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        hb_font_get_glyph_shape(m_font, glyph, pathFuncs(), &path);
        found = outlines.insert(glyph, path);
    }
    return *found;
}

const QList<SampleRenderer::ColourLayer> &SampleRenderer::colourLayers(quint32 glyph)
{
    auto found = m_layers.find(glyph);
    if (found != m_layers.end())
        return *found;
    QList<ColourLayer> layers;
    unsigned count = hb_ot_color_glyph_get_layers(m_face, glyph, 0, nullptr, nullptr);
    if (count > 0) {
        QList<hb_ot_color_layer_t> given(count);
        hb_ot_color_glyph_get_layers(m_face, glyph, 0, &count, given.data());
        unsigned paletteSize = hb_ot_color_palette_get_colors(m_face, 0, 0, nullptr, nullptr);
        QList<hb_color_t> palette(paletteSize);
        hb_ot_color_palette_get_colors(m_face, 0, 0, &paletteSize, palette.data());
        for (unsigned i = 0; i < count; ++i) {
            const unsigned index = given.at(i).color_index;
            QColor colour; // 0xFFFF and out-of-range entries: the text colour
            if (index < paletteSize) {
                const hb_color_t c = palette.at(index);
                colour = QColor(hb_color_get_red(c), hb_color_get_green(c), hb_color_get_blue(c), hb_color_get_alpha(c));
            }
            layers.append(ColourLayer{given.at(i).glyph, colour});
        }
    }
    return *m_layers.insert(glyph, layers);
}

bool SampleRenderer::openFreeType()
{
    if (m_ftTried)
        return m_ftFace;
    m_ftTried = true;
    if (FT_New_Memory_Face(FreeType::threadLibrary(), m_file->data(), static_cast<FT_Long>(m_file->size()), m_faceIndex,
                           &m_ftFace)
        != 0) {
        m_ftFace = nullptr;
        return false;
    }
    if (!m_setting.isEmpty() && FT_HAS_MULTIPLE_MASTERS(m_ftFace)) {
        QList<FT_Fixed> fixed;
        for (const double value : std::as_const(m_setting))
            fixed.append(static_cast<FT_Fixed>(value * 65536.0));
        FT_Set_Var_Design_Coordinates(m_ftFace, static_cast<FT_UInt>(fixed.size()), fixed.data());
    }
    return true;
}

const SampleRenderer::Bitmap *SampleRenderer::bitmap(quint32 glyph, double pixelSize)
{
    const int pixels = std::max(1, qRound(pixelSize));
    const quint64 key = (quint64(glyph) << 32) | quint32(pixels);
    auto found = m_bitmaps.find(key);
    if (found != m_bitmaps.end())
        return found->image.isNull() ? nullptr : &*found;
    Bitmap made;
    if (openFreeType()) {
        if (FT_HAS_FIXED_SIZES(m_ftFace)) {
            // The smallest strike at least as large as wanted, else the largest.
            int best = 0;
            for (int i = 1; i < m_ftFace->num_fixed_sizes; ++i) {
                const int size = m_ftFace->available_sizes[i].height;
                const int bestSize = m_ftFace->available_sizes[best].height;
                if ((bestSize < pixels && size > bestSize) || (size >= pixels && size < bestSize))
                    best = i;
            }
            FT_Select_Size(m_ftFace, best);
        } else {
            FT_Set_Pixel_Sizes(m_ftFace, 0, static_cast<FT_UInt>(pixels));
        }
        if (FT_Load_Glyph(m_ftFace, glyph, FT_LOAD_COLOR | FT_LOAD_RENDER) == 0) {
            const FT_GlyphSlot slot = m_ftFace->glyph;
            made.image = imageOf(slot->bitmap);
            made.offset = QPointF(slot->bitmap_left, -slot->bitmap_top);
            made.pixelsPerEm = m_ftFace->size->metrics.y_ppem;
        }
    }
    found = m_bitmaps.insert(key, made);
    return found->image.isNull() || found->pixelsPerEm <= 0 ? nullptr : &*found;
}

void SampleRenderer::paint(QPainter &painter, const ShapedLine &line, QPointF origin, double pixelSize,
                           const QColor &colour)
{
    if (fileChanged())
        return;
    const double scale = pixelSize / m_unitsPerEm;
    const QTransform base = painter.worldTransform();
    for (const PlacedGlyph &glyph : line.glyphs) {
        const QPointF at = origin + QPointF(glyph.x, glyph.y) * scale;
        paintGlyph(painter, glyph.glyph, at, scale, pixelSize, colour);
        painter.setWorldTransform(base);
    }
}

void SampleRenderer::paintGlyph(QPainter &painter, quint32 glyph, QPointF at, double scale, double pixelSize,
                                const QColor &colour)
{
    const QTransform base = painter.worldTransform();
    if (m_hasLayers) {
        const QList<ColourLayer> &layers = colourLayers(glyph);
        if (!layers.isEmpty()) {
            painter.setWorldTransform(QTransform(scale, 0, 0, scale, at.x(), at.y()) * base);
            for (const ColourLayer &layer : layers)
                painter.fillPath(outline(layer.glyph), layer.colour.isValid() ? layer.colour : colour);
            return;
        }
    }
    const QPainterPath &path = outline(glyph);
    if (!path.isEmpty()) {
        painter.setWorldTransform(QTransform(scale, 0, 0, scale, at.x(), at.y()) * base);
        painter.fillPath(path, colour);
        return;
    }
    if (!m_hasBitmaps)
        return; // a blank glyph, such as a space
    const Bitmap *image = bitmap(glyph, pixelSize);
    if (!image)
        return;
    // Strikes come in a few sizes: scale the nearest one to the size wanted.
    const double ratio = pixelSize / image->pixelsPerEm;
    const QRectF target(at + image->offset * ratio, QSizeF(image->image.size()) * ratio);
    const bool smooth = painter.renderHints().testFlag(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (image->image.format() == QImage::Format_Alpha8) {
        QImage tinted(image->image.size(), QImage::Format_ARGB32_Premultiplied);
        tinted.fill(colour);
        QPainter mask(&tinted);
        mask.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        mask.drawImage(0, 0, image->image);
        mask.end();
        painter.drawImage(target, tinted);
    } else {
        painter.drawImage(target, image->image);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}
