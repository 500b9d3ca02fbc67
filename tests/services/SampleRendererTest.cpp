// SPDX-License-Identifier: GPL-3.0-or-later
// The sample renderer on real fonts: the packaged DejaVu and Inter, and generated fonts
// with a known drawing. Pixels are checked by their properties (where the ink is, how
// much of it), never against stored images.
#include "InkMeasure.h"
#include "TestSupport.h"

#include "fonts/SampleRenderer.h"

#include <QImage>
#include <QFile>
#include <QFileInfo>
#include <QPainter>

#include <functional>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString kDejaVu = u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s;
const QString kInter = u"/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf"_s;
QString testFont(const QString &name) { return QStringLiteral(MORVANE_TEST_FONTS) + u'/' + name; }

std::unique_ptr<SampleRenderer> openFont(const QString &path)
{
    return SampleRenderer::open(MappedFile::open(path));
}

quint32 tag(const char *text) { return (quint32(text[0]) << 24) | (quint32(text[1]) << 16) | (quint32(text[2]) << 8) | quint32(text[3]); }

// `text` drawn in black on white, one line at `pixelSize`.
QImage render(SampleRenderer &renderer, const QString &text, double pixelSize)
{
    const ShapedLine line = renderer.layout(text).value(0);
    const double scale = pixelSize / renderer.unitsPerEm();
    QImage image(qCeil(line.width * scale + pixelSize) + 20, qCeil(renderer.lineHeight() * scale) + 20, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.paint(painter, line, QPointF(10, 10 + renderer.ascent() * scale), pixelSize, Qt::black);
    return image;
}

} // namespace

TEST(SampleRenderer, DrawsTheFileItWasGivenNotAnInstalledFontOfTheSameName)
{
    // The impostor's name table says "DejaVu Sans"; its glyphs are filled squares.
    const auto impostor = openFont(testFont(u"Impostor.ttf"_s));
    const auto dejaVu = openFont(kDejaVu);
    ASSERT_TRUE(impostor && dejaVu);
    const QImage square = render(*impostor, u"o"_s, 100);
    const QImage letter = render(*dejaVu, u"o"_s, 100);
    const QRect squareBox = InkMeasure::box(square);
    const QRect letterBox = InkMeasure::box(letter);
    ASSERT_FALSE(squareBox.isEmpty());
    ASSERT_FALSE(letterBox.isEmpty());
    EXPECT_GT(InkMeasure::share(square, squareBox), 0.95);
    EXPECT_TRUE(InkMeasure::isDark(square.pixel(squareBox.center()))) << "a square is solid in the middle";
    EXPECT_LT(InkMeasure::share(letter, letterBox), 0.6);
    EXPECT_FALSE(InkMeasure::isDark(letter.pixel(letterBox.center()))) << "an o is hollow";
    // 400 by 700 units at 100 pixels to the em.
    EXPECT_NEAR(squareBox.width(), 40, 2);
    EXPECT_NEAR(squareBox.height(), 70, 2);
}

TEST(SampleRenderer, WeightAxisChangesTheInkAndTheDefaultsReturnIt)
{
    const auto inter = openFont(kInter);
    ASSERT_TRUE(inter);
    const QString text = u"Hamburgefonstiv"_s;
    const QImage regular = render(*inter, text, 48);
    inter->setVariations({{tag("wght"), 100}});
    const QImage thin = render(*inter, text, 48);
    const double thinWidth = inter->layout(text).value(0).width;
    inter->setVariations({{tag("wght"), 900}});
    const QImage black = render(*inter, text, 48);
    const double blackWidth = inter->layout(text).value(0).width;
    EXPECT_GT(InkMeasure::mass(black), 2 * InkMeasure::mass(thin));
    EXPECT_GT(InkMeasure::mass(regular), InkMeasure::mass(thin));
    EXPECT_LT(InkMeasure::mass(regular), InkMeasure::mass(black));
    // Advances follow the axis too: black letters are wider.
    EXPECT_GT(blackWidth, thinWidth * 1.05);
    inter->setVariations({});
    EXPECT_EQ(render(*inter, text, 48), regular);
    // A value outside the axis is held at its end.
    inter->setVariations({{tag("wght"), 5000}});
    EXPECT_EQ(render(*inter, text, 48), black);
}

TEST(SampleRenderer, NamedInstancesComeFromTheFontsOwnTable)
{
    const auto inter = openFont(kInter);
    ASSERT_TRUE(inter);
    const QList<NamedInstance> instances = inter->namedInstances();
    ASSERT_EQ(instances.size(), 9);
    EXPECT_EQ(instances.first().name, u"Thin"_s);
    EXPECT_EQ(instances.first().values.value(tag("wght")), 100);
    const auto bold = std::find_if(instances.cbegin(), instances.cend(), [](const NamedInstance &i) { return i.name == u"Bold"_s; });
    ASSERT_NE(bold, instances.cend());
    EXPECT_EQ(bold->values.value(tag("wght")), 700);
    const auto dejaVu = openFont(kDejaVu);
    EXPECT_TRUE(dejaVu->namedInstances().isEmpty());
}

TEST(SampleRenderer, FeatureTogglesChangeTheShapedGlyphs)
{
    const auto font = openFont(testFont(u"Ligature.ttf"_s));
    ASSERT_TRUE(font);
    const QList<quint32> tags = font->featureTags();
    EXPECT_EQ(tags, (QList<quint32>{tag("liga"), tag("smcp"), tag("ss01"), tag("ss02")}));
    // A stylistic set's own name, from its feature parameters; none where it gives none.
    EXPECT_EQ(font->featureName(tag("ss01")), u"Single-storey a"_s);
    EXPECT_TRUE(font->featureName(tag("ss02")).isEmpty());
    EXPECT_TRUE(font->featureName(tag("liga")).isEmpty());
    EXPECT_TRUE(SampleRenderer::isOnByDefault(tag("liga")));
    EXPECT_FALSE(SampleRenderer::isOnByDefault(tag("smcp")));

    // Ligatures on by default: "fi" is one glyph, one cluster.
    EXPECT_EQ(font->layout(u"fi"_s).value(0).glyphs.size(), 1);
    font->setFeatures({{tag("liga"), false}});
    const ShapedLine apart = font->layout(u"fi"_s).value(0);
    ASSERT_EQ(apart.glyphs.size(), 2);
    EXPECT_NE(apart.glyphs.at(0).glyph, apart.glyphs.at(1).glyph);
    // Turned on, small capitals replace the "i" with the "f".
    font->setFeatures({{tag("liga"), false}, {tag("smcp"), true}});
    const ShapedLine small = font->layout(u"fi"_s).value(0);
    ASSERT_EQ(small.glyphs.size(), 2);
    EXPECT_EQ(small.glyphs.at(0).glyph, small.glyphs.at(1).glyph);
    // The pixels follow: the ligature is one wide bar, apart they are two thin ones.
    font->setFeatures({});
    const QRect together = InkMeasure::box(render(*font, u"fi"_s, 100));
    font->setFeatures({{tag("liga"), false}});
    const QImage twoBars = render(*font, u"fi"_s, 100);
    EXPECT_NEAR(together.width(), 50, 2);
    EXPECT_GT(InkMeasure::box(twoBars).width(), 80);
    EXPECT_LT(InkMeasure::share(twoBars, InkMeasure::box(twoBars)), 0.5);
}

TEST(SampleRenderer, ShapesComplexScriptsAndBreaksLinesAtSpaces)
{
    const auto font = openFont(kDejaVu);
    ASSERT_TRUE(font);
    // Arabic joins: the same letter takes other glyphs at the start and end of a word.
    const ShapedLine alone = font->layout(u"\u0628"_s).value(0);
    const ShapedLine joined = font->layout(u"\u0628\u0628"_s).value(0);
    ASSERT_EQ(alone.glyphs.size(), 1);
    ASSERT_EQ(joined.glyphs.size(), 2);
    EXPECT_NE(joined.glyphs.at(0).glyph, alone.glyphs.at(0).glyph);
    EXPECT_NE(joined.glyphs.at(0).glyph, joined.glyphs.at(1).glyph);
    // Right to left: the first letter is drawn at the right end.
    EXPECT_EQ(joined.glyphs.at(0).cluster, 1);
    EXPECT_EQ(joined.glyphs.at(1).cluster, 0);
    // Combining marks are positioned onto their base, not beside it.
    const ShapedLine marked = font->layout(u"e\u0301"_s).value(0);
    EXPECT_NEAR(marked.width, font->layout(u"e"_s).value(0).width, 1);

    const QString text = u"alpha beta alpha beta"_s;
    const double twoWords = font->layout(u"alpha beta"_s).value(0).width;
    const QList<ShapedLine> lines = font->layout(text, twoWords + 1);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(text.mid(lines.at(0).textStart, lines.at(0).textEnd - lines.at(0).textStart), u"alpha beta "_s);
    EXPECT_EQ(text.mid(lines.at(1).textStart), u"alpha beta"_s);
    EXPECT_NEAR(lines.at(0).width, twoWords, 0.5) << "the space at the line's end takes no room";
    for (const ShapedLine &line : lines)
        EXPECT_LE(line.width, twoWords + 1);
    // A word wider than the line is cut rather than left to overflow.
    const QList<ShapedLine> cut = font->layout(u"abcdefghij"_s, font->layout(u"abcd"_s).value(0).width);
    EXPECT_GE(cut.size(), 3);
    EXPECT_EQ(cut.constLast().textEnd, 10);
    EXPECT_EQ(font->layout(text, 0).size(), 1);
}

TEST(SampleRenderer, ColourLayersAndBitmapGlyphsAreDrawn)
{
    const auto isRed = [](QRgb p) { return qRed(p) > 200 && qGreen(p) < 60 && qBlue(p) < 60; };
    const auto isBlue = [](QRgb p) { return qBlue(p) > 200 && qRed(p) < 60 && qGreen(p) < 60; };
    // A glyph with only a PNG: FreeType rasterises it, scaled to the size wanted.
    const auto bitmap = openFont(testFont(u"Bitmap.ttf"_s));
    ASSERT_TRUE(bitmap);
    const QRect red = InkMeasure::box(render(*bitmap, u"A"_s, 100), isRed);
    EXPECT_NEAR(red.width(), 75, 2) << "a 48-pixel image of the 64-pixel strike, drawn at 100";
    // A colour glyph: its layer in the palette's blue, whatever the text colour.
    const auto colour = openFont(testFont(u"Colour.ttf"_s));
    ASSERT_TRUE(colour);
    const QRect blue = InkMeasure::box(render(*colour, u"A"_s, 100), isBlue);
    EXPECT_NEAR(blue.width(), 40, 2);
    EXPECT_NEAR(blue.height(), 70, 2);
}

TEST(SampleRenderer, FilesThatAreNotFontsGiveNoRendererAndBrokenOnesDoNotCrash)
{
    EXPECT_FALSE(openFont(testFont(u"Garbage.otf"_s)));
    EXPECT_FALSE(openFont(testFont(u"Empty.ttf"_s)));
    EXPECT_FALSE(openFont(testFont(u"missing.ttf"_s)));
    EXPECT_FALSE(SampleRenderer::open(nullptr));
    // Half a font: whatever HarfBuzz makes of it draws without reading past the end.
    if (const auto truncated = openFont(testFont(u"Truncated.ttf"_s)))
        render(*truncated, u"AB"_s, 40);
    // A suitcase's first face is drawn.
    const auto suitcase = openFont(testFont(u"Pair.dfont"_s));
    ASSERT_TRUE(suitcase);
    EXPECT_FALSE(InkMeasure::box(render(*suitcase, u"AB"_s, 40)).isEmpty());
}

// A file truncated or rewritten in place under a preview (a sync client, `truncate`,
// an interrupted copy): reading the mapping past the new end would be a SIGBUS inside
// HarfBuzz. The renderer notices before it reads and from then on draws nothing.
TEST(SampleRenderer, AFileChangedUnderItIsNotReadAgain)
{
    struct Case
    {
        const char *what;
        std::function<void(const QString &)> change;
    };
    const QList<Case> cases{
        {"truncated to 100 bytes", [](const QString &path) { ASSERT_EQ(::truncate(QFile::encodeName(path).constData(), 100), 0); }},
        {"rewritten in place with another font",
         [](const QString &path) {
             QFile file(path);
             ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)); // as cp does: same file, new bytes
             file.write(TestSupport::readFile(u"/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf"_s));
         }},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.what);
        const QString path = TestSupport::testRoot() + u"/Previewed.ttf"_s;
        QFile::remove(path);
        ASSERT_TRUE(QFile::copy(kDejaVu, path));
        const std::unique_ptr<SampleRenderer> renderer = openFont(path);
        ASSERT_TRUE(renderer);
        EXPECT_FALSE(renderer->fileChanged());
        EXPECT_GT(InkMeasure::mass(render(*renderer, u"Abc"_s, 40)), 0);
        test.change(path);
        EXPECT_TRUE(renderer->fileChanged());
        // Glyphs never drawn before: their outlines would be read from the mapping now.
        EXPECT_TRUE(renderer->layout(u"xyzÆØ"_s).isEmpty());
        EXPECT_TRUE(renderer->outline(77).isEmpty());
        EXPECT_EQ(InkMeasure::mass(render(*renderer, u"Qwerty"_s, 40)), 0);
        // Opened again, the file is what it is now.
        const std::unique_ptr<SampleRenderer> again = openFont(path);
        EXPECT_EQ(again != nullptr, QFileInfo(path).size() > 100);
    }
}
