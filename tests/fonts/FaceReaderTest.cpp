// SPDX-License-Identifier: GPL-3.0-or-later
// The catalogue's face reader against references nobody here wrote: fontconfig's own
// fc-scan for the languages, characters and spacing, fontTools for the names and scripts, on the packaged fonts the README
// installs and the generated test fonts, every face of every file.
#include "TestSupport.h"

#include "fonts/FaceReader.h"

#include <QDir>
#include <QDirIterator>
#include <QHash>
#include <QProcess>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// The packaged fonts the README installs and the generated ones, never whatever else
// the machine has: the same files, and the same answers, on every machine.
QStringList fontFiles()
{
    QStringList files;
    for (const QString &root : {u"/usr/share/fonts/truetype/dejavu"_s, u"/usr/share/fonts/truetype/inter-vf"_s,
                                QStringLiteral(MORVANE_TEST_FONTS)}) {
        QDirIterator it(root, {u"*.ttf"_s, u"*.otf"_s, u"*.ttc"_s}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            files.append(it.next());
    }
    files.sort();
    return files;
}

QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(120'000)) << program.toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString key(const QString &path, int index) { return path + u'#' + QString::number(index); }

} // namespace

TEST(FaceReader, LanguagesAreFontconfigsAnswerForEveryFace)
{
    const QStringList files = fontFiles();
    ASSERT_GT(files.size(), 20);
    QHash<QString, QString> expected; // what fc-scan says of each face
    QHash<QString, QString> characters;
    QSet<QString> monospaced; // fontconfig's "mono" spacing
    for (const QString &line :
         run(u"fc-scan"_s, QStringList{u"--format=%{file}\\t%{index}\\t%{lang}\\t%{charset}\\t%{spacing}\\n"_s} + files)
             .split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList parts = line.split(u'\t'); // languages are joined by "|"
        // fontconfig lists a variable font's named instances too, above index 65535.
        if (parts.value(1).toInt() < 0x10000) {
            expected.insert(key(parts.value(0), parts.value(1).toInt()), parts.value(2));
            characters.insert(key(parts.value(0), parts.value(1).toInt()), parts.value(3));
            if (parts.value(4) == u"100"_s)
                monospaced.insert(key(parts.value(0), parts.value(1).toInt()));
        }
    }
    int faces = 0;
    for (const QString &file : files) {
        for (const FaceRecord &face : FaceReader::read(file)) {
            ++faces;
            const QString k = key(file, face.faceIndex);
            ASSERT_TRUE(expected.contains(k)) << "fc-scan does not know " << k.toStdString();
            QStringList theirs = expected.value(k).split(u'|', Qt::SkipEmptyParts);
            QStringList ours = face.languages;
            theirs.sort();
            ours.sort();
            EXPECT_EQ(ours, theirs) << k.toStdString();
            // The characters too, in fc-scan's own notation (symbol maps included).
            QStringList ranges;
            for (const auto &[first, last] : face.codePoints)
                ranges.append(first == last ? QString::number(first, 16)
                                            : QString::number(first, 16) + u'-' + QString::number(last, 16));
            EXPECT_EQ(ranges.join(u' '), characters.value(k)) << k.toStdString();
            // Monospaced where fontconfig measures it so (the fixed-pitch flag may add
            // more), and classed "Monospace" only then.
            EXPECT_TRUE(!monospaced.contains(k) || face.monospaced) << k.toStdString() << " measures monospaced";
            EXPECT_TRUE(face.classification != FaceRecord::Classification::Monospace || face.monospaced)
                << k.toStdString() << " is classed Monospace";
        }
    }
    EXPECT_EQ(faces, expected.size()) << "every face fontconfig sees, and no other";
}

TEST(FaceReader, NamesAndScriptsAreFontToolsOwn)
{
    const QString script = uR"(
import sys
from fontTools.ttLib import TTCollection, TTFont
for path in sys.argv[1:]:
    try:
        fonts = TTCollection(path).fonts if path.endswith('.ttc') else [TTFont(path)]
        fonts[0]['name']
    except Exception:
        continue  # not a font fontTools opens either
    for index, font in enumerate(fonts):
        name = font['name']
        def get(*ids):
            for i in ids:
                # Control characters are no part of a name (a legacy record may hold only one).
                value = ''.join(c for c in (name.getDebugName(i) or '') if c.isprintable())
                if value:
                    return value
            return ''
        scripts = set()
        for table in ('GSUB', 'GPOS'):
            if table in font and font[table].table.ScriptList:
                scripts.update(record.ScriptTag.strip() for record in font[table].table.ScriptList.ScriptRecord)
        print('|'.join([path, str(index), get(16, 1), get(17, 2) or 'Regular', get(4), get(6), ' '.join(sorted(scripts))]))
)"_s;
    const QStringList files = fontFiles();
    int compared = 0;
    QHash<QString, QStringList> ours;
    for (const QString &file : files) {
        for (const FaceRecord &face : FaceReader::read(file))
            ours.insert(key(file, face.faceIndex),
                        {face.family, face.style, face.fullName, face.postScriptName, face.scripts.join(u' ')});
    }
    for (const QString &line : run(QStringLiteral(MORVANE_PYTHON), QStringList{u"-c"_s, script} + files)
                                   .split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList parts = line.split(u'|');
        const QString k = key(parts.value(0), parts.value(1).toInt());
        if (!ours.contains(k))
            continue; // a file we rightly refuse (truncated, garbage) fontTools may still open
        EXPECT_EQ(ours.value(k), parts.mid(2)) << k.toStdString();
        ++compared;
    }
    EXPECT_GT(compared, 20);
}

// What a designer filters by, on fonts whose kind is known.
TEST(FaceReader, KindMakersAndTechnology)
{
    const QString dejavu = u"/usr/share/fonts/truetype/dejavu/"_s;
    const struct
    {
        QString file;
        FaceRecord::Classification classification;
        int weight;
        bool italic;
        bool monospaced;
    } cases[] = {
        {u"DejaVuSans.ttf"_s, FaceRecord::Classification::SansSerif, 400, false, false},
        {u"DejaVuSans-BoldOblique.ttf"_s, FaceRecord::Classification::SansSerif, 700, true, false},
        {u"DejaVuSerif.ttf"_s, FaceRecord::Classification::SlabSerif, 400, false, false}, // PANOSE: square serifs
        {u"DejaVuSansMono.ttf"_s, FaceRecord::Classification::Monospace, 400, false, true},
    };
    for (const auto &c : cases) {
        const QList<FaceRecord> faces = FaceReader::read(dejavu + c.file);
        ASSERT_EQ(faces.size(), 1) << c.file.toStdString();
        const FaceRecord &face = faces.first();
        EXPECT_EQ(face.classification, c.classification) << c.file.toStdString();
        EXPECT_EQ(face.weight, c.weight) << c.file.toStdString();
        EXPECT_EQ(face.italic, c.italic) << c.file.toStdString();
        EXPECT_EQ(face.monospaced, c.monospaced) << c.file.toStdString();
        EXPECT_EQ(face.outline, FaceRecord::Outline::TrueType);
        EXPECT_TRUE(face.covers(U'Ő') && face.covers(U'A')) << c.file.toStdString();
        EXPECT_FALSE(face.covers(U'\u4E00')) << "no Han";
        EXPECT_TRUE(face.scripts.contains(u"latn"_s)) << face.scripts.join(u' ').toStdString();
        EXPECT_FALSE(face.version.isEmpty());
    }
    const QList<FaceRecord> pair = FaceReader::read(QStringLiteral(MORVANE_TEST_FONTS "/Pair.ttc"));
    ASSERT_EQ(pair.size(), 2) << "every face of a collection";
    EXPECT_NE(pair.at(0).postScriptName, pair.at(1).postScriptName);
    // A symbol font: its letters where Windows puts them too, and no vendor of NULs.
    const QList<FaceRecord> symbol = FaceReader::read(QStringLiteral(MORVANE_TEST_FONTS "/Symbol.ttf"));
    ASSERT_EQ(symbol.size(), 1);
    EXPECT_TRUE(symbol.first().covers(U'A') && symbol.first().covers(U'\uF041'));
    EXPECT_TRUE(symbol.first().vendorId.isEmpty()) << symbol.first().vendorId.toStdString();
    // A header claiming 65,535 faces: the three the file holds, no phantom.
    QStringList claimed;
    for (const FaceRecord &face : FaceReader::read(QStringLiteral(MORVANE_TEST_FONTS "/Claims65535.ttc")))
        claimed.append(u"%1 %2"_s.arg(face.faceIndex).arg(face.postScriptName));
    EXPECT_EQ(claimed, (QStringList{u"0 CollectionFirst"_s, u"1 CollectionSecond"_s, u"2 CollectionThird"_s}));
    const QList<FaceRecord> axes = FaceReader::read(QStringLiteral(MORVANE_TEST_FONTS "/Axes.ttf"));
    ASSERT_EQ(axes.size(), 1);
    EXPECT_EQ(axes.first().axes, (QStringList{u"wght"_s, u"XTRA"_s, u"opsz"_s}));
    const QList<FaceRecord> colour = FaceReader::read(QStringLiteral(MORVANE_TEST_FONTS "/Colour.ttf"));
    ASSERT_EQ(colour.size(), 1);
    EXPECT_FALSE(colour.first().colourFormats.isEmpty());
    for (const char *refused : {"/Garbage.otf", "/Empty.ttf", "/Truncated.ttf"})
        EXPECT_TRUE(FaceReader::read(QStringLiteral(MORVANE_TEST_FONTS) + QLatin1StringView(refused)).isEmpty()) << refused;
}
