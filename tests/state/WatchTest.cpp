// SPDX-License-Identifier: GPL-3.0-or-later
// Source folders that stay current: with real inotify, a font copied into a source, or
// a folder of fonts moved in, shows in the library after a quiet second without Refresh;
// past the system's limit of watched folders the window says so once and goes on.
#include "StateTestSupport.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class Watch : public testing::Test, public StoreFixture
{
protected:
    Watch()
    {
        writeFile(path(u"Sans/a.ttf"_s));
        writeFile(path(u"Serif/b.otf"_s));
        addSource(library);
        scan();
    }
    bool inLibrary(const QString &relative) { return store->fileSystemService().exists(path(relative)); }
};

} // namespace

TEST_F(Watch, FontsAddedToASourceAppearWithoutRefresh)
{
    store->setWatchingSources(true);
    store->sourceWatcher()->setQuietTime(200);
    EXPECT_EQ(store->sourceWatcher()->watched().size(), 3) << "the source and its two folders";
    const struct
    {
        const char *what;
        std::function<void()> act;
        QString appears;
    } changes[] = {
        {"a font copied into a folder", [&] { writeFile(path(u"Sans/c.ttf"_s)); }, u"Sans/c.ttf"_s},
        {"a folder of fonts made in the source", [&] {
             const QString outside = makeDir(testRoot() + u"/Elsewhere/Display"_s);
             writeFile(outside + u"/d.otf"_s);
             QDir().rename(outside, path(u"Display"_s)); // moved in whole, as a file manager does
         }, u"Display/d.otf"_s},
        {"a font in the folder just added", [&] { writeFile(path(u"Display/e.ttf"_s)); }, u"Display/e.ttf"_s},
    };
    for (const auto &c : changes) {
        c.act();
        EXPECT_TRUE(QTest::qWaitFor([&] { return inLibrary(c.appears); }, 10'000)) << c.what;
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return store->sourceWatcher()->watched().contains(path(u"Display"_s)); }))
        << "a new folder is watched from its refresh on";

    QFile::remove(path(u"Serif/b.otf"_s));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !inLibrary(u"Serif/b.otf"_s); }, 10'000)) << "a font removed";
    EXPECT_TRUE(store->notice().isEmpty());
}

TEST_F(Watch, PastTheWatchLimitTheWindowSaysSoOnceAndRefreshStillWorks)
{
    store->setWatchingSources(true);
    store->sourceWatcher()->setWatchLimitForTesting(1);
    store->sourceWatcher()->setQuietTime(200);
    store->refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store->notice().isEmpty(); }, 10'000));
    EXPECT_TRUE(store->notice().contains(u"appear after Refresh Sources"_s)) << store->notice().toStdString();
    store->dismissNotice();
    // Not watched: a font copied in shows after Refresh Sources, and the message is not said again.
    writeFile(path(u"Serif/c.otf"_s));
    store->refreshFileSystem();
    EXPECT_TRUE(QTest::qWaitFor([&] { return inLibrary(u"Serif/c.otf"_s); }, 10'000));
    EXPECT_TRUE(store->notice().isEmpty());
}

// A licence tag, an access time or a permission changes no folder's content: no
// refresh, no new look at the catalogue. A real change after them still counts.
TEST_F(Watch, AttributesOfFilesRescanNothing)
{
    store->setWatchingSources(true);
    store->sourceWatcher()->setQuietTime(0);
    QSignalSpy indexing(store.get(), &AppState::isIndexingChanged);
    QSignalSpy passedOver(store->sourceWatcher(), &SourceWatcher::passedOver);
    const struct
    {
        const char *what;
        std::function<void()> act;
    } attributes[] = {
        {"a licence tag set in Morvane", [&] { store->setLicenseStatus(LicenseStatus::Licensed, path(u"Sans/a.ttf"_s)); }},
        {"a file's times set again (touch -r)", [&] {
             const QByteArray file = QFile::encodeName(path(u"Serif/b.otf"_s));
             struct stat info{};
             ASSERT_EQ(::stat(file.constData(), &info), 0);
             const timespec times[2] = {info.st_atim, info.st_mtim};
             ASSERT_EQ(::utimensat(AT_FDCWD, file.constData(), times, 0), 0);
         }},
        {"a permission", [&] { QFile::setPermissions(path(u"Sans/a.ttf"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther); }},
    };
    for (const auto &a : attributes) {
        const qsizetype before = passedOver.count();
        a.act();
        ASSERT_TRUE(QTest::qWaitFor([&] { return passedOver.count() > before; }, 10'000)) << a.what;
        EXPECT_EQ(indexing.count(), 0) << a.what;
    }
    writeFile(path(u"Sans/c.ttf"_s));
    EXPECT_TRUE(QTest::qWaitFor([&] { return inLibrary(u"Sans/c.ttf"_s); }, 10'000));
}

// A font copied into one folder of a library of many costs a look at that folder, not
// a reading of all; Refresh Sources still reads every folder.
TEST_F(Watch, AChangeReadsTheFoldersThatChangedAndRefreshSourcesReadsAll)
{
    for (int i = 0; i < 20; ++i)
        writeFile(path(u"Family %1/Regular.ttf"_s.arg(i)));
    ageFolders(library);
    store->refreshFileSystem(); // read once more, now that their times are settled
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store->isIndexing(); }, 10'000));
    std::atomic<qsizetype> foldersRead = -1;
    store->setLibraryScannerForTesting([&](const AppState::LibraryScanRequest &request, const CancellationToken &cancel) {
        AppState::LibraryScan scan = AppState::scanLibrary(request, cancel);
        foldersRead = scan.foldersRead;
        return scan;
    });
    store->setWatchingSources(true);
    store->sourceWatcher()->setQuietTime(0);
    writeFile(path(u"Family 7/Bold.ttf"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return inLibrary(u"Family 7/Bold.ttf"_s); }, 10'000));
    EXPECT_EQ(foldersRead, 1) << "the folder the font came into";
    EXPECT_EQ(store->fileSystemService().fontCount(), 23) << "every font still there";

    QSignalSpy installed(store.get(), &AppState::cachedColumnsChanged);
    store->refreshFileSystem(AppState::Refresh::Everything);
    ASSERT_TRUE(installed.wait(10'000));
    EXPECT_EQ(foldersRead, 23) << "the source, its two folders and the twenty families";
}

// A source folder renamed away while Morvane runs is "Not available" at once, and comes
// back when it is renamed back.
TEST_F(Watch, ASourceRenamedAwayIsUnavailableUntilItIsBack)
{
    store->setWatchingSources(true);
    store->sourceWatcher()->setQuietTime(0);
    QSignalSpy unavailable(store.get(), &AppState::unavailableSourcesChanged);
    ASSERT_TRUE(QDir().rename(library, library + u".away"_s));
    ASSERT_TRUE(unavailable.wait(10'000));
    EXPECT_EQ(store->unavailableSources().size(), 1);
    ASSERT_TRUE(QDir().rename(library + u".away"_s, library));
    ASSERT_TRUE(unavailable.wait(10'000));
    EXPECT_TRUE(store->unavailableSources().isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return inLibrary(u"Sans/a.ttf"_s); }, 10'000));
}
