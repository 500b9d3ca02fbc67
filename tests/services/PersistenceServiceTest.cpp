// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "services/PersistenceService.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QSettings>
#include <QStandardPaths>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QUuid kId = QUuid::fromString(u"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2"_s);

QString storage()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Morvane"_s;
}

QStringList unreadableCopies(const QString &fileName)
{
    return QDir(storage()).entryList({fileName + u".unreadable-*"_s}, QDir::Files);
}

} // namespace

TEST(Persistence, FirstRunIsSilentAndSavesRoundTrip)
{
    PersistenceService persistence;
    ASSERT_FALSE(QDir(storage()).exists());
    const QString quiet = capturedStdout([&] {
        EXPECT_TRUE(persistence.loadSources().isEmpty());
        EXPECT_TRUE(persistence.loadCollections().isEmpty());
        EXPECT_TRUE(persistence.loadActivatedFonts().isEmpty());
    });
    EXPECT_EQ(quiet, QString());
    EXPECT_TRUE(QDir(storage()).exists()); // created on access

    const QList<FolderSource> sources{{kId, u"/home/me/Fonts/Client \"A\""_s, u"Client \"A\""_s},
                                      {QUuid::createUuid(), u"/mnt/a\\b/c\nd/\U0001F600"_s, u"\U0001F600"_s}};
    persistence.saveSources(sources);
    persistence.waitForWrites();
    EXPECT_EQ(readFile(storage() + u"/sources.json"_s).left(64),
              QByteArray(R"([{"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","path":"/home/me/F)"));
    EXPECT_FALSE(readFile(storage() + u"/sources.json"_s).contains('\n')); // compact: escaped, never raw
    EXPECT_EQ(persistence.loadSources(), sources);

    FontCollection collection{kId, u"Favorites"_s, {{u"/A"_s, true}, {u"/b \"x\".otf"_s, false}}, u"/i/x.png"_s};
    const QList<FontCollection> collections{collection, FontCollection::create(u"Empty"_s)};
    persistence.saveCollections(collections);
    persistence.waitForWrites();
    EXPECT_EQ(PersistenceService().loadCollections(), collections);

    const QSet<QString> fonts{u"/f/a.otf"_s, u"/f/quote\".ttf"_s, u"/f/back\\slash.ttf"_s,
                              u"/f/new\nline.ttf"_s, u"/f/\U0001D11E.otf"_s};
    persistence.saveActivatedFonts(fonts);
    persistence.waitForWrites();
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), fonts);
    persistence.saveActivatedFonts({});
    persistence.waitForWrites();
    EXPECT_EQ(readFile(storage() + u"/activated_fonts.json"_s), QByteArray("[]"));
}

TEST(Persistence, ReadsFilesAsOtherJsonWritersProduceThem)
{
    writeFile(storage() + u"/sources.json"_s,
              R"( [ { "name" : "Fonts", "path" : "\/Users\/me\/Fonts", "id" : "6f1c1a52-0d63-4b4a-9c4e-1b2f8e3d42e2", "color": 3 } ] )");
    writeFile(storage() + u"/collections.json"_s,
              R"([{"members":[{"isDirectory":false,"path":"\/a.otf","note":"x"}],"iconPath":null,)"
              R"("name":"N","id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2"}])");
    writeFile(storage() + u"/activated_fonts.json"_s, "[\n  \"\\/a.otf\",\n  \"\\/a.otf\",\n  \"\\/b.ttf\"\n]\n");
    PersistenceService persistence;
    const QString output = capturedStdout([&] {
        const QList<FolderSource> sources = persistence.loadSources();
        ASSERT_EQ(sources.size(), 1);
        EXPECT_EQ(sources[0], (FolderSource{kId, u"/Users/me/Fonts"_s, u"Fonts"_s}));
        const QList<FontCollection> collections = persistence.loadCollections();
        ASSERT_EQ(collections.size(), 1);
        EXPECT_FALSE(collections[0].iconPath.has_value());
        EXPECT_EQ(collections[0].members, (QList<CollectionMember>{{u"/a.otf"_s, false}}));
        EXPECT_EQ(persistence.loadActivatedFonts(), (QSet<QString>{u"/a.otf"_s, u"/b.ttf"_s}));
    });
    EXPECT_EQ(output, QString());
}

TEST(Persistence, UnreadableFilesAreReportedWhereTheFaultIsAndKept)
{
    PersistenceService persistence;
    const QByteArray truncated = R"([{"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"N","memb)";
    writeFile(storage() + u"/collections.json"_s, truncated);
    QString output = capturedStdout([&] { EXPECT_TRUE(persistence.loadCollections().isEmpty()); });
    EXPECT_TRUE(output.startsWith(u"Failed to load collections: not valid JSON at line 1, column "_s)) << output.toStdString();
    ASSERT_EQ(unreadableCopies(u"collections.json"_s).size(), 1);
    const QString copy = storage() + u'/' + unreadableCopies(u"collections.json"_s).first();
    EXPECT_TRUE(output.contains(copy)) << output.toStdString();
    EXPECT_EQ(readFile(copy), truncated);
    EXPECT_EQ(readFile(storage() + u"/collections.json"_s), truncated); // untouched until the next save
    // Starting again with the same file keeps no second copy.
    capturedStdout([&] { persistence.loadCollections(); });
    EXPECT_EQ(unreadableCopies(u"collections.json"_s).size(), 1);
    // The next save replaces the file; the copy stays.
    persistence.saveCollections({});
    persistence.waitForWrites();
    EXPECT_EQ(readFile(storage() + u"/collections.json"_s), QByteArray("[]"));
    EXPECT_EQ(readFile(copy), truncated);

    // The 50th source lacks its name: the line says which record and which key.
    QByteArray sources("[");
    for (int i = 0; i < 60; ++i) {
        sources += R"({"id":")" + QUuid::createUuid().toString(QUuid::WithoutBraces).toLatin1() + R"(","path":"/p)" +
                   QByteArray::number(i) + '"' + (i == 49 ? "" : R"(,"name":"n")") + "},";
    }
    sources.chop(1);
    sources += ']';
    writeFile(storage() + u"/sources.json"_s, sources);
    output = capturedStdout([&] { EXPECT_TRUE(persistence.loadSources().isEmpty()); });
    EXPECT_TRUE(output.startsWith(u"Failed to load sources: record 50: key \"name\" is missing (the file was kept as "_s))
        << output.toStdString();
    EXPECT_TRUE(output.endsWith(u")\n"_s));
    EXPECT_EQ(output.count(u'\n'), 1);

    writeFile(storage() + u"/sources.json"_s, R"([{"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E","path":"/p","name":"n"}])");
    output = capturedStdout([&] { persistence.loadSources(); });
    EXPECT_TRUE(output.contains(u"record 1: key \"id\" is not a valid UUID"_s)) << output.toStdString();

    writeFile(storage() + u"/activated_fonts.json"_s, R"(["/a.otf", 7])");
    output = capturedStdout([&] { EXPECT_TRUE(persistence.loadActivatedFonts().isEmpty()); });
    EXPECT_TRUE(output.startsWith(u"Failed to load activated fonts: record 2: expected a path string but found a number"_s))
        << output.toStdString();

    writeFile(storage() + u"/activated_fonts.json"_s, R"({"paths":[]})");
    output = capturedStdout([&] { persistence.loadActivatedFonts(); });
    EXPECT_TRUE(output.startsWith(u"Failed to load activated fonts: expected a JSON array at the top level"_s))
        << output.toStdString();
}

TEST(Persistence, LargeActivatedFontSetsLoadWhole)
{
    QSet<QString> paths;
    for (int i = 0; i < 100'000; ++i)
        paths.insert(u"/home/designer/Fonts/Library/Foundry %1/Family %2/Family-Style %3 \"x\".otf"_s.arg(i % 97).arg(i % 1013).arg(i));
    PersistenceService persistence;
    persistence.saveActivatedFonts(paths);
    persistence.waitForWrites();
    EXPECT_GT(QFileInfo(storage() + u"/activated_fonts.json"_s).size(), 7'000'000);
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), paths);
}

TEST(Persistence, SavingIntoAnUnusableFolderPrintsAndKeepsGoing)
{
    const QString blocker = writeFile(testRoot() + u"/not-a-folder"_s, "x");
    PersistenceService persistence(blocker + u"/Morvane"_s);
    const QString output = capturedStdout([&] {
        persistence.saveSources({{kId, u"/a"_s, u"a"_s}});
        persistence.waitForWrites();
        persistence.saveCollections({});
        persistence.waitForWrites();
        persistence.saveActivatedFonts({u"/a.otf"_s});
        persistence.waitForWrites();
        EXPECT_TRUE(persistence.loadSources().isEmpty());
    });
    QStringList lines = output.split(u'\n', Qt::SkipEmptyParts);
    lines.sort(); // the writer takes files in its own order
    ASSERT_EQ(lines.size(), 3) << output.toStdString();
    EXPECT_TRUE(lines[0].startsWith(u"Failed to save activated fonts: "_s));
    EXPECT_TRUE(lines[1].startsWith(u"Failed to save collections: "_s));
    EXPECT_TRUE(lines[2].startsWith(u"Failed to save sources: "_s));
    EXPECT_GT(lines[2].size(), 24); // the reason follows
    EXPECT_EQ(readFile(blocker), QByteArray("x"));
}

TEST(Persistence, CollectionIconsReplaceEachOtherWhateverTheExtension)
{
    PersistenceService persistence;
    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(Qt::red);
    const QString png = testRoot() + u"/icon.png"_s;
    ASSERT_TRUE(image.save(png));
    const QString jpg = testRoot() + u"/photo.jpg"_s;
    ASSERT_TRUE(image.save(jpg));
    const QString bare = writeFile(testRoot() + u"/dir.v2/iconfile"_s, "raw");
    const QString other = writeFile(persistence.collectionIconsURL() + u"/6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E3.png"_s);

    const QString id = u"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2"_s;
    EXPECT_EQ(persistence.storeCollectionIcon(kId, jpg), persistence.collectionIconsURL() + u'/' + id + u".jpg"_s);
    const std::optional<QString> stored = persistence.storeCollectionIcon(kId, png);
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(*stored, storage() + u"/CollectionIcons/"_s + id + u".png"_s);
    EXPECT_EQ(QImage(*stored).pixelColor(1, 1), QColor(Qt::red));
    EXPECT_EQ(QDir(persistence.collectionIconsURL()).entryList(QDir::Files),
              (QStringList{id + u".png"_s, u"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E3.png"_s}));

    EXPECT_EQ(persistence.storeCollectionIcon(kId, bare), storage() + u"/CollectionIcons/"_s + id + u'.');
    EXPECT_EQ(persistence.storeCollectionIcon(kId, std::nullopt), std::nullopt);
    EXPECT_EQ(QDir(persistence.collectionIconsURL()).entryList(QDir::Files),
              QStringList{u"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E3.png"_s});
    EXPECT_TRUE(QFile::exists(other));

    persistence.storeCollectionIcon(kId, png);
    std::optional<QString> missing = QString();
    const QString output = capturedStdout([&] { missing = persistence.storeCollectionIcon(kId, testRoot() + u"/gone.png"_s); });
    EXPECT_FALSE(missing.has_value());
    EXPECT_TRUE(output.startsWith(u"Failed to copy collection icon: "_s)) << output.toStdString();
    EXPECT_FALSE(QFile::exists(storage() + u"/CollectionIcons/"_s + id + u".png"_s)); // the old one is gone
}

TEST(Persistence, PreviewSettingsDefaultAndPersistAfterAPause)
{
    QStringList writes;
    {
        PersistenceService persistence;
        persistence.setSaveObserver([&writes](const QString &file, const QString &failure) { writes.append(file + failure); });
        EXPECT_EQ(persistence.previewText(), u"The quick brown fox jumps over the lazy dog"_s);
        EXPECT_EQ(persistence.previewSize(), 36.0);
        // A slider dragged and a word typed: the service reads the latest at once, and
        // the burst is written once.
        for (int size = 12; size <= 72; ++size)
            persistence.setPreviewSize(size + 0.5);
        persistence.setPreviewText(u"Hamburgefonstiv ÄÖÜ"_s);
        EXPECT_EQ(persistence.previewSize(), 72.5);
        EXPECT_EQ(persistence.previewText(), u"Hamburgefonstiv ÄÖÜ"_s);
        persistence.waitForWrites();
        EXPECT_EQ(writes, QStringList{u"Morvane.conf"_s});
        // Another reader of the file sees the values, with the keys and types kept.
        const QSettings file(persistence.settingsPath(), QSettings::IniFormat);
        EXPECT_TRUE(persistence.settingsPath().startsWith(
            QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/Morvane/"_s));
        EXPECT_EQ(file.value(u"morvane_preview_text"_s).toString(), u"Hamburgefonstiv ÄÖÜ"_s);
        EXPECT_EQ(file.value(u"morvane_preview_size"_s).toDouble(), 72.5);
        for (double size : {0.0, -4.0}) {
            persistence.setPreviewSize(size);
            EXPECT_EQ(persistence.previewSize(), 36.0);
        }
        persistence.setPreviewText(QString());
        persistence.setSaveObserver(nullptr);
    } // quitting writes what is still waiting for its pause
    EXPECT_EQ(PersistenceService().previewSize(), 36.0);
    EXPECT_EQ(PersistenceService().previewText(), QString()); // an empty text is a choice, not a missing one
}

// A settings file that can't be written is reported like any failed save, and the
// values stay in this run.
TEST(Persistence, PreviewSettingsThatCantBeWrittenAreReported)
{
    PersistenceService persistence;
    makeDir(persistence.settingsPath() + u"/inside"_s); // a folder where the file should be
    QStringList failures;
    persistence.setSaveObserver([&failures](const QString &file, const QString &failure) { failures.append(file + u": "_s + failure); });
    const QString output = capturedStdout([&] {
        persistence.setPreviewSize(60);
        persistence.waitForWrites();
    });
    const QString expected = u"can't write "_s + persistence.settingsPath();
    EXPECT_EQ(failures, QStringList{u"Morvane.conf: "_s + expected});
    EXPECT_EQ(output, u"Failed to save preferences: "_s + expected + u'\n');
    EXPECT_EQ(persistence.previewSize(), 60.0);
    EXPECT_EQ(persistence.unsavedFailure(), expected);
    persistence.setSaveObserver(nullptr);
}

TEST(Persistence, AWriteThatRunsOutOfSpaceLeavesThePreviousFile)
{
    PersistenceService persistence;
    const QList<FolderSource> before{{kId, u"/a"_s, u"a"_s}};
    persistence.saveSources(before);
    persistence.waitForWrites();
    const QByteArray saved = readFile(storage() + u"/sources.json"_s);

    // A file size limit makes the write fail the way a full disk does.
    QList<FolderSource> many;
    for (int i = 0; i < 200; ++i)
        many.append({QUuid::createUuid(), u"/fonts/folder %1"_s.arg(i), u"folder %1"_s.arg(i)});
    rlimit previous{};
    ::getrlimit(RLIMIT_FSIZE, &previous);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit tiny = previous;
    tiny.rlim_cur = 512;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
    const QString output = capturedStdout([&] {
        persistence.saveSources(many);
        persistence.waitForWrites();
        persistence.waitForWrites();
    });
    ::setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, oldHandler);

    EXPECT_TRUE(output.startsWith(u"Failed to save sources: "_s)) << output.toStdString();
    EXPECT_EQ(readFile(storage() + u"/sources.json"_s), saved);
    EXPECT_EQ(persistence.loadSources(), before);
    EXPECT_EQ(QDir(storage()).entryList(QDir::Files), QStringList{u"sources.json"_s}); // no temporary left behind
}

// What stands where a saved list should be may be anything: each is refused at once
// with its reason, the window starts, and the thing is left as it is (a file too large
// to be ours is moved aside like any other unreadable file).
TEST(Persistence, SavedFilesThatAreNoRegularFilesAreRefusedAtOnce)
{
    struct Case
    {
        const char *what;
        std::function<void(const QString &)> make;
        QString reason;
        bool leftInPlace;
    };
    const QList<Case> cases{
        {"a FIFO", [](const QString &path) { ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0); },
         u"it is not a regular file (a pipe or a device)"_s, true},
        {"a link to /dev/zero", [](const QString &path) { makeSymlink(u"/dev/zero"_s, path); },
         u"it is not a regular file (a pipe or a device)"_s, true},
        {"a folder", [](const QString &path) { makeDir(path); }, u"it is a folder, not a file"_s, true},
        {"a sparse file of 300 MB",
         [](const QString &path) {
             writeFile(path);
             ASSERT_EQ(::truncate(QFile::encodeName(path).constData(), 300'000'000), 0);
         },
         u"it is too large (300.0 MB; at most 268 MB expected)"_s, false},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.what);
        QDir(storage()).removeRecursively();
        PersistenceService persistence;
        const QString path = persistence.storageURL() + u"/sources.json"_s;
        test.make(path);
        PersistenceService::LoadStatus status = PersistenceService::LoadStatus::Read;
        QList<FolderSource> sources{{QUuid::createUuid(), u"/x"_s, u"x"_s}};
        const QString output = capturedStdout([&] { sources = persistence.loadSources(&status); });
        EXPECT_TRUE(sources.isEmpty());
        EXPECT_EQ(status, PersistenceService::LoadStatus::Unreadable);
        EXPECT_TRUE(output.startsWith(u"Failed to load sources: "_s + test.reason)) << output.toStdString();
        EXPECT_EQ(QFileInfo::exists(path) || QFileInfo(path).isSymLink(), test.leftInPlace) << output.toStdString();
    }
}

// Choosing the stored icon again changes nothing; a pipe or a device chosen as an
// icon is refused without waiting, and the collection shows the default icon.
TEST(Persistence, CollectionIconsAreOnlyCopiedFromRegularFiles)
{
    PersistenceService persistence;
    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(Qt::red);
    const QString png = testRoot() + u"/icon.png"_s;
    ASSERT_TRUE(image.save(png));
    const std::optional<QString> stored = persistence.storeCollectionIcon(kId, png);
    ASSERT_TRUE(stored.has_value());
    const QByteArray bytes = readFile(*stored);

    EXPECT_EQ(persistence.storeCollectionIcon(kId, *stored), stored);
    makeSymlink(*stored, testRoot() + u"/link-to-stored.png"_s);
    EXPECT_EQ(persistence.storeCollectionIcon(kId, testRoot() + u"/link-to-stored.png"_s), stored);
    EXPECT_EQ(readFile(*stored), bytes);

    const QString fifo = testRoot() + u"/pipe.png"_s;
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    makeSymlink(u"/dev/zero"_s, testRoot() + u"/zero.png"_s);
    for (const QString &source : QStringList{fifo, testRoot() + u"/zero.png"_s}) {
        QString error;
        std::optional<QString> result = QString();
        const QString output = capturedStdout([&] { result = persistence.storeCollectionIcon(kId, source, &error); });
        EXPECT_FALSE(result.has_value());
        EXPECT_EQ(error, u"it is not a regular file (a pipe or a device)"_s);
        EXPECT_EQ(output, u"Failed to copy collection icon: it is not a regular file (a pipe or a device)\n"_s);
    }
    EXPECT_TRUE(QFileInfo(fifo).exists()); // left as it was
}
