#include "TestSupport.h"

#include "services/FontMetadata.h"

#include <QFile>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString kFonts = QStringLiteral(MORVANE_TEST_FONTS);
const QString kDejaVuSans = u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s;
const QString kInterRoman = u"/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf"_s;

QString copyTo(const QString &source, const QString &name)
{
    const QString target = testRoot() + u'/' + name;
    EXPECT_TRUE(QFile::copy(source, target)) << target.toStdString();
    return target;
}

} // namespace

TEST(FontMetadata, ReadsAnInstalledStaticFont)
{
    const std::optional<FontMetadata> metadata = FontMetadata::load(kDejaVuSans);
    ASSERT_TRUE(metadata.has_value());
    EXPECT_EQ(metadata->postScriptName, u"DejaVuSans"_s);
    EXPECT_EQ(metadata->familyName, u"DejaVu Sans"_s);
    EXPECT_EQ(metadata->styleName, u"Book"_s);
    EXPECT_EQ(metadata->fullName, u"DejaVu Sans"_s);
    EXPECT_EQ(metadata->glyphCount, 6253);
    EXPECT_EQ(metadata->fileType, u"TrueType Font"_s);
    EXPECT_EQ(metadata->fileSize, FontFiles::formatFileSize(QFile(kDejaVuSans).size()));
    EXPECT_TRUE(metadata->variationAxes.isEmpty()); // a static font has no axes, and still a value
}

TEST(FontMetadata, ReadsVariationAxesWithNamesFromTheNameTable)
{
    std::optional<FontMetadata> inter = FontMetadata::load(kInterRoman);
    ASSERT_TRUE(inter.has_value());
    ASSERT_EQ(inter->variationAxes.size(), 1);
    EXPECT_EQ(inter->variationAxes[0], (VariationAxis{0x77676874, u"Weight"_s, u"wght"_s, 100, 900, 400}));
    EXPECT_EQ(inter->familyName, u"Inter"_s);

    // Three axes in the font; the middle one's name is missing from the name table.
    const std::optional<FontMetadata> axes = FontMetadata::load(kFonts + u"/Axes.ttf"_s);
    ASSERT_TRUE(axes.has_value());
    ASSERT_EQ(axes->variationAxes.size(), 2);
    EXPECT_EQ(axes->variationAxes[0].tag, u"wght"_s);
    EXPECT_EQ(axes->variationAxes[1], (VariationAxis{0x6F70737A, u"Optical Size"_s, u"opsz"_s, 8, 144, 12}));
}

TEST(FontMetadata, NamesFromEveryKindOfNameTable)
{
    std::optional<FontMetadata> plain = FontMetadata::load(kFonts + u"/Plain.ttf"_s);
    ASSERT_TRUE(plain.has_value());
    EXPECT_EQ(plain->postScriptName, u"MorvaneTest-Bold"_s);
    EXPECT_EQ(plain->familyName, u"Morvane Test"_s);
    EXPECT_EQ(plain->styleName, u"Bold"_s);
    EXPECT_EQ(plain->fullName, u"Morvane Test Bold"_s);
    EXPECT_EQ(plain->glyphCount, 3);

    const std::optional<FontMetadata> noStyle = FontMetadata::load(kFonts + u"/NoStyle.ttf"_s);
    ASSERT_TRUE(noStyle.has_value());
    EXPECT_EQ(noStyle->styleName, u"Regular"_s);
    EXPECT_EQ(noStyle->fullName, u"No Style Full"_s);

    // No full name record: made from family and style rather than left empty.
    const std::optional<FontMetadata> nameless = FontMetadata::load(kFonts + u"/Nameless.ttf"_s);
    ASSERT_TRUE(nameless.has_value());
    EXPECT_EQ(nameless->fullName, u"Nameless Regular"_s);

    const std::optional<FontMetadata> mac = FontMetadata::load(kFonts + u"/MacRoman.ttf"_s);
    ASSERT_TRUE(mac.has_value());
    EXPECT_EQ(mac->familyName, u"Café Ñandú"_s);
    EXPECT_EQ(mac->fullName, u"Café Ñandú Regular"_s);
    EXPECT_EQ(mac->postScriptName, u"CafeNandu-Regular"_s);

    const std::optional<FontMetadata> pair = FontMetadata::load(kFonts + u"/Pair.ttc"_s);
    ASSERT_TRUE(pair.has_value());
    EXPECT_EQ(pair->familyName, u"Collection First"_s);
    EXPECT_EQ(pair->fileType, u"TrueType Collection"_s);

    const std::optional<FontMetadata> suitcase = FontMetadata::load(kFonts + u"/Pair.dfont"_s);
    ASSERT_TRUE(suitcase.has_value());
    EXPECT_EQ(suitcase->familyName, u"Collection First"_s);
    EXPECT_EQ(suitcase->fileType, u"Data Fork Suitcase"_s);
}

TEST(FontMetadata, FileTypeComesFromTheExtensionAlone)
{
    const QString plain = kFonts + u"/Plain.ttf"_s;
    EXPECT_EQ(FontMetadata::load(copyTo(plain, u"Font.TTF"_s))->fileType, u"TrueType Font"_s);
    EXPECT_EQ(FontMetadata::load(copyTo(plain, u"Font.otf"_s))->fileType, u"OpenType Font"_s);
    EXPECT_EQ(FontMetadata::load(copyTo(plain, u"font.woff"_s))->fileType, u"Font File"_s);
    EXPECT_EQ(FontMetadata::load(copyTo(plain, u"noextension"_s))->fileType, u"Font File"_s);
    EXPECT_EQ(FontFiles::fileTypeName(u"/a/b.OTC"_s), u"OpenType Collection"_s);
    EXPECT_EQ(FontFiles::fileTypeName(u"/a/b.dfont"_s), u"Data Fork Suitcase"_s);
}

TEST(FontMetadata, BrokenOrMissingFilesGiveNoValue)
{
    for (const QString &name : {u"Truncated.ttf"_s, u"Garbage.otf"_s, u"Empty.ttf"_s, u"Missing.ttf"_s})
        EXPECT_FALSE(FontMetadata::load(kFonts + u'/' + name).has_value()) << name.toStdString();
    // A real font cut short is truncated too.
    QFile source(kDejaVuSans);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QString cut = writeFile(testRoot() + u"/Cut.ttf"_s, source.read(200'000));
    EXPECT_FALSE(FontMetadata::load(cut).has_value());
}

TEST(FontMetadata, SizesReadAsFileManagersShowThem)
{
    EXPECT_EQ(FontFiles::formatFileSize(0), u"0 bytes"_s);
    EXPECT_EQ(FontFiles::formatFileSize(1), u"1 byte"_s);
    EXPECT_EQ(FontFiles::formatFileSize(999), u"999 bytes"_s);
    EXPECT_EQ(FontFiles::formatFileSize(1000), u"1 kB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(759'720), u"760 kB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(1'234'567), u"1.2 MB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(5'370'000'000), u"5.37 GB"_s);
}
