// SPDX-License-Identifier: GPL-3.0-or-later
// The font catalogue on real fonts: each filter alone and combined against the same
// question asked of the faces directly, files read again only when they change, and a
// database that is broken, too new or unwritable never in the way.
#include "TestSupport.h"

#include "fonts/FaceReader.h"
#include "services/FontCatalog.h"

#include "discovery/NameCollator.h"

#include <QCollator>
#include <QDirIterator>
#include <QFileInfo>

#include <sqlite3.h>

#include <functional>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

FileStamp stampOf(const QString &path)
{
    const QFileInfo info(path);
    return {path, info.size(), info.lastModified().toSecsSinceEpoch()};
}

// The packaged fonts the README installs and the generated ones: never whatever else
// the machine has (Noto's hundreds of files would change every count).
QList<FileStamp> installedFonts()
{
    QList<FileStamp> files;
    for (const QString &folder : {u"/usr/share/fonts/truetype/dejavu"_s, u"/usr/share/fonts/truetype/inter-vf"_s}) {
        QDirIterator it(folder, {u"*.ttf"_s, u"*.otf"_s}, QDir::Files);
        while (it.hasNext())
            files.append(stampOf(it.next()));
    }
    for (const char *name : {"Axes.ttf", "Garbage.otf", "Colour.ttf", "Bitmap.ttf", "Pair.ttc", "Plain.ttf", "ShortLoca.ttf",
                             "Impostor.ttf", "Outlines.otf"})
        files.append(stampOf(QStringLiteral(MORVANE_TEST_FONTS "/") + QLatin1StringView(name)));
    return files;
}

template <typename Face>
QStringList names(const QList<Face> &faces)
{
    QStringList list;
    for (const Face &face : faces)
        list.append(face.postScriptName);
    list.sort();
    return list;
}

} // namespace

TEST(FontCatalog, EachFilterAloneAndCombinedAnswersAsTheFacesDo)
{
    FontCatalog catalog(testRoot() + u"/cache/catalogue.sqlite"_s);
    ASSERT_TRUE(catalog.isAvailable());
    QList<FaceRecord> all;
    for (const FileStamp &file : installedFonts()) {
        const QList<FaceRecord> faces = FaceReader::read(file.path);
        catalog.record(file, faces);
        all += faces;
    }
    ASSERT_GT(all.size(), 20);
    EXPECT_EQ(catalog.faceCount(), all.size());
    const auto lower = [](const QString &text) { return text.toLower(); };

    using C = FaceRecord::Classification;
    const struct
    {
        const char *question;
        FontQuery query;
        std::function<bool(const FaceRecord &)> answers;
    } cases[] = {
        {"a name's word prefixes", FontQuery{.text = u"dej mon"_s},
         [&](const FaceRecord &f) { return lower(f.family).startsWith(u"dejavu sans mono"_s); }},
        // Words with no letter or digit say nothing: they are passed over, not matched.
        {"punctuation beside a word", FontQuery{.text = u"dej - & * –"_s},
         [&](const FaceRecord &f) { return lower(f.family).startsWith(u"dejavu"_s); }},
        {"punctuation alone", FontQuery{.text = u"- * ."_s}, [](const FaceRecord &) { return true; }},
        // Quotes, balanced or not, are no syntax: an unbalanced one quotes to the end.
        {"an unbalanced quote", FontQuery{.text = u"\"dejavu sans mo"_s},
         [&](const FaceRecord &f) { return lower(f.family).startsWith(u"dejavu sans mono"_s); }},
        {"a quoted phrase and a word", FontQuery{.text = u"\"dejavu serif\" cond"_s},
         [&](const FaceRecord &f) { return lower(f.fullName).startsWith(u"dejavu serif condensed"_s); }},
        {"a quote alone", FontQuery{.text = u"dej \""_s},
         [&](const FaceRecord &f) { return lower(f.family).startsWith(u"dejavu"_s); }},
        {"a word joined by punctuation", FontQuery{.text = u"sans-mono"_s},
         [&](const FaceRecord &f) { return lower(f.family).contains(u"sans mono"_s); }},
        {"any letter case, any accents", FontQuery{.text = u"SÉRIF"_s},
         [&](const FaceRecord &f) { return lower(f.family + u' ' + f.style + u' ' + f.fullName).contains(u"serif"_s); }},
        {"Hungarian sans serifs", FontQuery{.languages = {u"hu"_s}, .classifications = {C::SansSerif}},
         [](const FaceRecord &f) { return f.languages.contains(u"hu"_s) && f.classification == C::SansSerif; }},
        {"Ő ő ű mapped", FontQuery{.requiredCharacters = u"Ő ő ű"_s},
         [](const FaceRecord &f) { return f.covers(U'Ő') && f.covers(U'ő') && f.covers(U'ű'); }},
        {"Cyrillic word with a combining mark", FontQuery{.requiredCharacters = u"Приве\u0301т"_s},
         [](const FaceRecord &f) {
             return f.covers(U'П') && f.covers(U'р') && f.covers(U'и') && f.covers(U'в') && f.covers(U'е') && f.covers(U'т')
                    && f.covers(U'\u0301');
         }},
        {"bold italics", FontQuery{.minWeight = 700, .italic = true},
         [](const FaceRecord &f) { return f.weight >= 700 && f.italic; }},
        {"monospaced", FontQuery{.monospaced = true}, [](const FaceRecord &f) { return f.monospaced; }},
        {"variable", FontQuery{.variable = true}, [](const FaceRecord &f) { return !f.axes.isEmpty(); }},
        {"light upright serifs or slabs", FontQuery{.classifications = {C::Serif, C::SlabSerif}, .maxWeight = 300, .italic = false},
         [](const FaceRecord &f) {
             return (f.classification == C::Serif || f.classification == C::SlabSerif) && f.weight <= 300 && !f.italic;
         }},
        {"Cyrillic and Greek in GSUB or GPOS", FontQuery{.scripts = {u"cyrl"_s, u"grek"_s}},
         [](const FaceRecord &f) { return f.scripts.contains(u"cyrl"_s) && f.scripts.contains(u"grek"_s); }},
        {"condensed to normal width", FontQuery{.minWidth = 3, .maxWidth = 5},
         [](const FaceRecord &f) { return f.width >= 3 && f.width <= 5; }},
        {"colour", FontQuery{.colour = true}, [](const FaceRecord &f) { return !f.colourFormats.isEmpty(); }},
        {"CFF or bitmap only", FontQuery{.formats = {FaceRecord::Outline::Cff, FaceRecord::Outline::BitmapOnly}},
         [](const FaceRecord &f) { return f.outline == FaceRecord::Outline::Cff || f.outline == FaceRecord::Outline::BitmapOnly; }},
        {"duplicates: another file, same PostScript name and version", FontQuery{.duplicates = true},
         [&](const FaceRecord &f) {
             return std::any_of(all.cbegin(), all.cend(), [&](const FaceRecord &o) {
                 return o.path != f.path && o.postScriptName == f.postScriptName && o.version == f.version;
             });
         }},
        {"sans serif variable italics", FontQuery{.classifications = {C::SansSerif}, .italic = true, .variable = true},
         [](const FaceRecord &f) { return f.classification == C::SansSerif && f.italic && !f.axes.isEmpty(); }},
    };
    for (const auto &c : cases) {
        QList<FaceRecord> expected;
        std::copy_if(all.cbegin(), all.cend(), std::back_inserter(expected), c.answers);
        const QList<FoundFace> answer = catalog.query(c.query).faces();
        EXPECT_EQ(names(answer), names(expected)) << c.question;
        EXPECT_FALSE(expected.isEmpty() && answer.isEmpty() && QByteArray(c.question) != "light upright serifs or slabs")
            << c.question << ": a question nothing answers proves little";
    }
    // Whole records come back as they went in.
    const QList<FoundFace> mono = catalog.query(FontQuery{.text = u"DejaVuSansMono-Bold"_s}).faces();
    ASSERT_FALSE(mono.isEmpty());
    const auto original = std::find_if(all.cbegin(), all.cend(), [&](const FaceRecord &f) { return f.path == mono.first().path; });
    ASSERT_NE(original, all.cend());
    std::optional<FaceRecord> stored = catalog.face(original->path, original->faceIndex);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->size, QFileInfo(original->path).size());
    stored->size = original->size;
    stored->modified = original->modified;
    EXPECT_EQ(*stored, *original);
}

// The answer as a list draws it: families in the library's order, each family's faces
// narrow to wide, light to heavy, upright first; counts that add up to what is shown.
TEST(FontCatalog, AnswersComeAsSortedFamiliesWithCountsForTheirFilters)
{
    FontCatalog catalog(testRoot() + u"/cache/catalogue.sqlite"_s);
    QList<FaceRecord> all;
    for (const FileStamp &file : installedFonts()) {
        const QList<FaceRecord> faces = FaceReader::read(file.path);
        catalog.record(file, faces);
        all += faces;
    }
    const FontQueryAnswer answer = catalog.query(FontQuery{});
    ASSERT_EQ(answer.faceCount(), all.size());
    const NameCollator collator{QLocale()}; // the library's own order, whatever the locale
    for (qsizetype i = 1; i < answer.families.size(); ++i) {
        EXPECT_LE(collator.compare(answer.families.at(i - 1).name, answer.families.at(i).name), 0)
            << answer.families.at(i - 1).name.toStdString() << " before " << answer.families.at(i).name.toStdString();
    }
    for (const FontFamily &family : answer.families) {
        for (qsizetype i = 0; i < family.faces.size(); ++i) {
            const FoundFace &face = family.faces.at(i);
            EXPECT_EQ(catalog.face(face.path, face.faceIndex).value_or(FaceRecord()).family, family.name);
            if (i == 0)
                continue;
            const FoundFace &before = family.faces.at(i - 1);
            EXPECT_LE(std::tie(before.width, before.weight, before.italic), std::tie(face.width, face.weight, face.italic))
                << face.postScriptName.toStdString();
        }
    }
    const auto dejavu = std::find_if(answer.families.cbegin(), answer.families.cend(),
                                     [](const FontFamily &f) { return f.name == u"DejaVu Sans"_s; });
    ASSERT_NE(dejavu, answer.families.cend());
    EXPECT_GE(dejavu->faces.size(), 3) << "DejaVu Sans, its bold and the impostor that calls itself so";

    // Counts of a narrower answer: each language and classification as its faces have them.
    const FontQueryAnswer serifs = catalog.query(FontQuery{.text = u"serif"_s});
    QHash<QString, int> languages;
    QHash<FaceRecord::Classification, int> classes;
    for (const FoundFace &found : serifs.faces()) {
        const FaceRecord face = catalog.face(found.path, found.faceIndex).value_or(FaceRecord());
        for (const QString &language : face.languages)
            ++languages[language];
        ++classes[face.classification];
    }
    EXPECT_FALSE(languages.isEmpty());
    EXPECT_EQ(serifs.languageCounts, languages);
    EXPECT_EQ(serifs.classificationCounts, classes);

    // What only the caller knows narrows the answer and its counts alike.
    const auto inDejaVu = [](const QString &path) { return path.contains(u"/dejavu/"_s); };
    const FontQueryAnswer dejavuOnly =
        catalog.query(FontQuery{}, [&](const QString &path, const QString &) { return inDejaVu(path); }, {u"/usr/share/fonts"_s});
    const auto dejavuFaces = std::count_if(all.cbegin(), all.cend(), [&](const FaceRecord &f) { return inDejaVu(f.path); });
    EXPECT_EQ(dejavuOnly.faceCount(), dejavuFaces);
    EXPECT_EQ(dejavuOnly.classificationCounts.value(FaceRecord::Classification::SansSerif),
              std::count_if(all.cbegin(), all.cend(), [&](const FaceRecord &f) {
                  return inDejaVu(f.path) && f.classification == FaceRecord::Classification::SansSerif;
              }));
    EXPECT_EQ(dejavuOnly.sourceCounts, (QHash<QString, int>{{u"/usr/share/fonts"_s, int(dejavuFaces)}}));

    // A question overtaken before it runs answers nothing, marked so.
    const std::atomic_bool overtaken = true;
    const FontQueryAnswer stopped = catalog.query(FontQuery{}, {}, {}, &overtaken);
    EXPECT_TRUE(stopped.cancelled);
    EXPECT_TRUE(stopped.families.isEmpty());
}

// OS/2 classes out of range (a width class of 500 or 0, a weight of 28,926) hide no face
// from a question that does not ask about them, and keep it out of one that does.
TEST(FontCatalog, OutOfRangeWeightsAndWidthsHideNoFace)
{
    FontCatalog catalog(testRoot() + u"/cache/catalogue.sqlite"_s);
    for (const char *name : {"Plain.ttf", "OddWide.ttf", "OddWidthless.ttf", "OddHeavy.ttf"}) {
        const QString path = QStringLiteral(MORVANE_TEST_FONTS "/") + QLatin1StringView(name);
        catalog.record(stampOf(path), FaceReader::read(path));
    }
    const auto names = [&](const FontQuery &query) {
        QStringList found;
        for (const FoundFace &face : catalog.query(query).faces())
            found.append(face.postScriptName);
        found.sort();
        return found;
    };
    const struct
    {
        const char *question;
        FontQuery query;
        QStringList answer;
    } cases[] = {
        {"everything", FontQuery{}, {u"MorvaneTest-Bold"_s, u"OddHeavy"_s, u"OddWide"_s, u"OddWidthless"_s}},
        {"a name", FontQuery{.text = u"odd"_s}, {u"OddHeavy"_s, u"OddWide"_s, u"OddWidthless"_s}},
        {"normal width", FontQuery{.minWidth = 5, .maxWidth = 5}, {u"MorvaneTest-Bold"_s, u"OddHeavy"_s}},
        {"any weight up to black", FontQuery{.minWeight = 1, .maxWeight = 900},
         {u"MorvaneTest-Bold"_s, u"OddWide"_s, u"OddWidthless"_s}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(names(c.query), c.answer) << c.question;
    EXPECT_EQ(catalog.face(QStringLiteral(MORVANE_TEST_FONTS "/OddWide.ttf"), 0).value_or(FaceRecord{}).width, 500)
        << "kept as the file has it";
}

TEST(FontCatalog, FilesAreReadAgainOnlyWhenTheyChange)
{
    const QString folder = makeDir(testRoot() + u"/Fonts"_s);
    QList<FileStamp> seen;
    for (const QString &name : {u"a.ttf"_s, u"b.ttf"_s, u"c.ttf"_s}) {
        ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf"), folder + u'/' + name));
        seen.append(stampOf(folder + u'/' + name));
    }
    FontCatalog catalog(testRoot() + u"/cache/catalogue.sqlite"_s);
    QStringList toRead = catalog.filesToRead(seen);
    EXPECT_EQ(toRead.size(), 3);
    for (const FileStamp &file : seen)
        catalog.record(file, FaceReader::read(file.path));
    EXPECT_TRUE(catalog.filesToRead(seen).isEmpty()) << "nothing changed, nothing read";
    EXPECT_EQ(catalog.query(FontQuery{.text = u"morvane"_s}).faceCount(), 3); // answers from memory from here on
    const FontQueryAnswer before = catalog.query(FontQuery{});
    ASSERT_EQ(before.families.size(), 1);

    // A file replaced in place by another font: read again, its old face gone from the answers.
    ASSERT_TRUE(QFile::remove(folder + u"/a.ttf"_s));
    ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Pair.ttc"), folder + u"/a.ttf"_s));
    seen[0] = stampOf(folder + u"/a.ttf"_s);
    seen[0].modified += 1; // same second as the copy before
    EXPECT_EQ(catalog.filesToRead(seen), QStringList{folder + u"/a.ttf"_s});
    catalog.record(seen[0], FaceReader::read(seen[0].path));
    EXPECT_EQ(catalog.query(FontQuery{.text = u"morvane"_s}).faceCount(), 2);
    EXPECT_EQ(catalog.query(FontQuery{.text = u"collection"_s}).faceCount(), 2);

    seen[1].modified += 60; // touched
    seen.removeAt(2);       // gone
    EXPECT_EQ(catalog.filesToRead(seen), QStringList{folder + u"/b.ttf"_s});
    EXPECT_EQ(catalog.faceCount(), 3) << "the gone file's face went with it";
    EXPECT_EQ(catalog.query(FontQuery{.text = u"morvane"_s}).faceCount(), 1);
    // An answer given before the changes is the library as it was then.
    EXPECT_EQ(before.faceCount(), 3);
    EXPECT_EQ(before.families.at(0).faces.size(), 3);
    EXPECT_EQ(before.families.at(0).faces.at(0).path, folder + u"/a.ttf"_s);

    // Unreadable is remembered, and not tried again until it changes.
    const QString bad = writeFile(folder + u"/bad.ttf"_s, "not a font");
    seen.append(stampOf(bad));
    EXPECT_TRUE(catalog.filesToRead(seen).contains(bad));
    catalog.record(seen.last(), FaceReader::read(bad));
    EXPECT_FALSE(catalog.filesToRead(seen).contains(bad));
}

TEST(FontCatalog, ABrokenTooNewOrUnwritableDatabaseIsNeverInTheWay)
{
    const QString path = testRoot() + u"/cache/catalogue.sqlite"_s;
    makeDir(testRoot() + u"/cache"_s);
    const struct
    {
        const char *what;
        std::function<void()> make;
    } cases[] = {
        {"corrupt", [&] { writeFile(path, QByteArray(8192, 'x')); }},
        {"from a newer Morvane",
         [&] {
             sqlite3 *db = nullptr;
             sqlite3_open(QFile::encodeName(path).constData(), &db);
             sqlite3_exec(db, "CREATE TABLE future(x); PRAGMA user_version = 99;", nullptr, nullptr, nullptr);
             sqlite3_close(db);
         }},
    };
    for (const auto &c : cases) {
        QFile::remove(path);
        c.make();
        QString printed;
        printed = capturedStdout([&] {
            FontCatalog catalog(path);
            EXPECT_TRUE(catalog.isAvailable()) << c.what;
            EXPECT_EQ(catalog.faceCount(), 0) << c.what;
            catalog.record(stampOf(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf")),
                           FaceReader::read(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf")));
            EXPECT_EQ(catalog.faceCount(), 1) << c.what;
        });
        EXPECT_TRUE(printed.startsWith(u"The font catalogue at "_s + path + u" was set aside"_s)) << printed.toStdString();
        EXPECT_EQ(printed.count(u'\n'), 1) << "one line: " << printed.left(300).toStdString();
    }
    // Nowhere to write: unavailable, every answer empty, nothing thrown.
    FontCatalog nowhere(u"/proc/self/morvane/catalogue.sqlite"_s);
    EXPECT_FALSE(nowhere.isAvailable());
    EXPECT_TRUE(nowhere.query(FontQuery{.text = u"a"_s}).families.isEmpty());
    EXPECT_TRUE(nowhere.filesToRead({stampOf(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf"))}).isEmpty());
}

namespace {

// Every page but the first (the header, with the schema's root) overwritten, as a disk
// or a crash leaves a file: it still opens, and what it holds reads as damaged.
void damagePagesAfterTheFirst(const QString &path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_GT(file.size(), 4096 * 2);
    ASSERT_TRUE(file.seek(4096));
    file.write(QByteArray(file.size() - 4096, '\xab'));
}

// A catalogue at `path` that has read every one of `files`, closed again: its log
// folded into the file.
void catalogueOf(const QString &path, const QList<FileStamp> &files)
{
    FontCatalog catalog(path);
    for (const FileStamp &file : files)
        catalog.record(file, FaceReader::read(file.path));
    ASSERT_TRUE(catalog.filesToRead(files).isEmpty());
    const QString printed = capturedStdout([&] { catalog.checkIntegrity(); });
    EXPECT_TRUE(printed.isEmpty()) << "a sound file passes: " << printed.toStdString();
    EXPECT_FALSE(catalog.needsReading());
}

} // namespace

// A statement that finds the file damaged (here the first question, loading the faces)
// has it set aside with one line and started afresh; SQLite's words are logged, and the
// next look at the files reads them all again.
TEST(FontCatalog, DamageAnyStatementFindsIsSetAsideLoggedAndReadAgain)
{
    const QString path = testRoot() + u"/cache/catalogue.sqlite"_s;
    const QList<FileStamp> files = installedFonts();
    catalogueOf(path, files);
    ASSERT_FALSE(QFileInfo::exists(path + u"-wal"_s));
    damagePagesAfterTheFirst(path);

    CapturedLog log;
    FontCatalog catalog(path); // the header is sound: it opens
    EXPECT_FALSE(catalog.needsReading());
    FontQueryAnswer answer;
    const QString printed = capturedStdout([&] { answer = catalog.query(FontQuery{}); });
    EXPECT_EQ(answer.faceCount(), 0) << "a half-read file answers nothing rather than part";
    EXPECT_TRUE(printed.startsWith(u"The font catalogue at "_s + path + u" was set aside (database disk image is malformed)"_s))
        << printed.toStdString();
    EXPECT_EQ(printed.count(u'\n'), 1);
    EXPECT_TRUE(log.text().contains(u"morvane.library: the font catalogue: database disk image is malformed"_s))
        << log.text().toStdString();
    EXPECT_EQ(QDir(testRoot() + u"/cache"_s).entryList({u"catalogue.sqlite.set-aside-*"_s}).size(), 1);

    EXPECT_TRUE(catalog.needsReading());
    EXPECT_EQ(catalog.filesToRead(files).size(), files.size()) << "every file read again";
    EXPECT_FALSE(catalog.needsReading());
    for (const FileStamp &file : files)
        catalog.record(file, FaceReader::read(file.path));
    EXPECT_GT(catalog.query(FontQuery{}).faceCount(), 20);
    EXPECT_EQ(catalog.query(FontQuery{.requiredCharacters = u"Ő"_s}).faceCount(),
              catalog.query(FontQuery{.requiredCharacters = u"ŐŐ Ő"_s}).faceCount());
}

// The integrity check finds damage no question has met yet; a sound file passes.
TEST(FontCatalog, TheIntegrityCheckSetsADamagedFileAside)
{
    const QString path = testRoot() + u"/cache/catalogue.sqlite"_s;
    const QList<FileStamp> files = installedFonts();
    catalogueOf(path, files);
    damagePagesAfterTheFirst(path);
    FontCatalog catalog(path);
    const QString printed = capturedStdout([&] { catalog.checkIntegrity(); });
    EXPECT_TRUE(printed.startsWith(u"The font catalogue at "_s + path + u" was set aside ("_s)) << printed.toStdString();
    EXPECT_EQ(printed.count(u'\n'), 1) << "SQLite's report, however long, on one line";
    EXPECT_TRUE(catalog.needsReading());
    EXPECT_EQ(catalog.faceCount(), 0);
    EXPECT_EQ(catalog.filesToRead(files).size(), files.size());
}
