// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "fonts/FontMetadata.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <sys/stat.h>

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

    // Three axes in the font; the middle one's name is missing from the name table,
    // so it is named by its tag rather than left out.
    const std::optional<FontMetadata> axes = FontMetadata::load(kFonts + u"/Axes.ttf"_s);
    ASSERT_TRUE(axes.has_value());
    ASSERT_EQ(axes->variationAxes.size(), 3);
    EXPECT_EQ(axes->variationAxes[0].tag, u"wght"_s);
    EXPECT_EQ(axes->variationAxes[1], (VariationAxis{0x58545241, u"XTRA"_s, u"XTRA"_s, 0, 100, 50}));
    EXPECT_EQ(axes->variationAxes[2], (VariationAxis{0x6F70737A, u"Optical Size"_s, u"opsz"_s, 8, 144, 12}));

    // fvar without gvar: FreeType alone would report no axes.
    const std::optional<FontMetadata> fvarOnly = FontMetadata::load(kFonts + u"/FvarOnly.ttf"_s);
    ASSERT_TRUE(fvarOnly.has_value());
    ASSERT_EQ(fvarOnly->variationAxes.size(), 2);
    EXPECT_EQ(fvarOnly->variationAxes[1], (VariationAxis{0x77647468, u"wdth"_s, u"wdth"_s, 75, 125, 100}));
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

    // No full name or PostScript name record: none is invented.
    const std::optional<FontMetadata> nameless = FontMetadata::load(kFonts + u"/Nameless.ttf"_s);
    ASSERT_TRUE(nameless.has_value());
    EXPECT_EQ(nameless->fullName, QString());
    EXPECT_EQ(nameless->postScriptName, QString());
    const std::optional<FontMetadata> noFamily = FontMetadata::load(kFonts + u"/NoFamily.ttf"_s);
    ASSERT_TRUE(noFamily.has_value());
    EXPECT_EQ(noFamily->familyName, QString());
    EXPECT_EQ(noFamily->fullName, QString());

    // English Mac outranks Catalan and German Windows; a name only in German is used;
    // a PostScript name FreeType's getter refuses is read from the table.
    const std::optional<FontMetadata> languages = FontMetadata::load(kFonts + u"/Languages.ttf"_s);
    ASSERT_TRUE(languages.has_value());
    EXPECT_EQ(languages->familyName, u"Language"_s);
    EXPECT_EQ(languages->styleName, u"Regular"_s);
    EXPECT_EQ(languages->fullName, u"Sprache Standard"_s);
    EXPECT_EQ(languages->postScriptName, u"Language (Test) Regular"_s);

    // Big5 records decoded as Big5; a style of a control character alone is no style.
    const std::optional<FontMetadata> legacy = FontMetadata::load(kFonts + u"/Legacy.ttf"_s);
    ASSERT_TRUE(legacy.has_value());
    EXPECT_EQ(legacy->familyName, u"新細明體"_s);
    EXPECT_EQ(legacy->postScriptName, u"PMingLiU"_s);
    EXPECT_EQ(legacy->styleName, u"Regular"_s);
    EXPECT_EQ(legacy->fullName, u"Ming Light"_s);

    EXPECT_EQ(FontMetadata::load(kFonts + u"/MacJapanese.ttf"_s)->familyName, u"明朝体"_s);

    // maxp's count, though the loca table is one entry short.
    EXPECT_EQ(FontMetadata::load(kFonts + u"/ShortLoca.ttf"_s)->glyphCount, 3);

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

    // Things named like fonts that are no files: each gives no value at once, without
    // waiting for a writer or reading without end.
    const QString fifo = testRoot() + u"/Pipe.ttf"_s;
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    makeSymlink(u"/dev/zero"_s, testRoot() + u"/Zero.ttf"_s);
    makeSymlink(testRoot() + u"/LoopB.ttf"_s, testRoot() + u"/LoopA.ttf"_s);
    makeSymlink(testRoot() + u"/LoopA.ttf"_s, testRoot() + u"/LoopB.ttf"_s);
    makeDir(testRoot() + u"/Folder.ttf"_s);
    for (const QString &name : {u"Pipe.ttf"_s, u"Zero.ttf"_s, u"LoopA.ttf"_s, u"Folder.ttf"_s})
        EXPECT_FALSE(FontMetadata::load(testRoot() + u'/' + name).has_value()) << name.toStdString();

    // Collections whose face offset points past the end (by a little, by a page, by
    // gigabytes): checked before anything is read there.
    for (const quint32 offset : {16u, 4096u, 0x7FFFFFF0u}) {
        QByteArray header = "ttcf" + QByteArray::fromHex("0001000000000001"); // version 1.0, one face
        header.append(char(offset >> 24)).append(char(offset >> 16)).append(char(offset >> 8)).append(char(offset));
        const QString ttc = writeFile(testRoot() + u"/Offset%1.ttc"_s.arg(offset), header);
        EXPECT_FALSE(FontMetadata::load(ttc).has_value()) << offset;
    }
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
    // Rounded first, then the unit chosen: no "1,000 kB" or "1,000.0 MB".
    EXPECT_EQ(FontFiles::formatFileSize(999'499), u"999 kB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(999'500), u"1.0 MB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(999'999), u"1.0 MB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(999'949'999), u"999.9 MB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(999'999'999), u"1.00 GB"_s);
    EXPECT_EQ(FontFiles::formatFileSize(1'000'000'000'000), u"1.00 TB"_s);
}

// An independent reader, fontTools, applying the same name rules, agrees on every
// field of the fonts the installer installs and of every generated font.
TEST(FontMetadata, AgreesWithFontToolsOnEveryField)
{
    QStringList fonts;
    for (const char *folder : {"/usr/share/fonts/truetype/dejavu", "/usr/share/fonts/truetype/inter-vf"}) {
        for (const QString &name : QDir(QString::fromLatin1(folder)).entryList({u"*.ttf"_s}, QDir::Files))
            fonts.append(QString::fromLatin1(folder) + u'/' + name);
    }
    for (const QString &name : {u"Plain.ttf"_s, u"NoStyle.ttf"_s, u"Nameless.ttf"_s, u"MacRoman.ttf"_s, u"Axes.ttf"_s,
                                u"Pair.ttc"_s, u"Languages.ttf"_s, u"Legacy.ttf"_s, u"FvarOnly.ttf"_s,
                                u"NoFamily.ttf"_s, u"ShortLoca.ttf"_s, u"MacJapanese.ttf"_s})
        fonts.append(kFonts + u'/' + name);
    ASSERT_GE(fonts.size(), 17);

    QProcess python;
    python.start(QStringLiteral(MORVANE_PYTHON), QStringList{QStringLiteral(MORVANE_SOURCE_DIR) + u"/tools/fonts/describe_fonts.py"_s} + fonts);
    ASSERT_TRUE(python.waitForFinished(120'000));
    ASSERT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    const QJsonObject expected = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
    ASSERT_EQ(expected.size(), fonts.size());

    for (const QString &font : std::as_const(fonts)) {
        SCOPED_TRACE(font.toStdString());
        const QJsonObject theirs = expected.value(font).toObject();
        const std::optional<FontMetadata> ours = FontMetadata::load(font);
        ASSERT_TRUE(ours.has_value());
        EXPECT_EQ(ours->postScriptName, theirs.value(u"postScriptName"_s).toString());
        EXPECT_EQ(ours->familyName, theirs.value(u"familyName"_s).toString());
        EXPECT_EQ(ours->styleName, theirs.value(u"styleName"_s).toString());
        EXPECT_EQ(ours->fullName, theirs.value(u"fullName"_s).toString());
        EXPECT_EQ(ours->glyphCount, theirs.value(u"glyphCount"_s).toInteger());
        const QJsonArray axes = theirs.value(u"axes"_s).toArray();
        ASSERT_EQ(ours->variationAxes.size(), axes.size());
        for (qsizetype i = 0; i < axes.size(); ++i) {
            const QJsonObject axis = axes.at(i).toObject();
            EXPECT_EQ(ours->variationAxes[i].tag, axis.value(u"tag"_s).toString());
            EXPECT_EQ(ours->variationAxes[i].name, axis.value(u"name"_s).toString());
            // fontTools rounds 16.16 values to their shortest decimal form.
            EXPECT_NEAR(ours->variationAxes[i].minValue, axis.value(u"min"_s).toDouble(), 1.0 / 65536);
            EXPECT_NEAR(ours->variationAxes[i].defaultValue, axis.value(u"default"_s).toDouble(), 1.0 / 65536);
            EXPECT_NEAR(ours->variationAxes[i].maxValue, axis.value(u"max"_s).toDouble(), 1.0 / 65536);
        }
    }
}
