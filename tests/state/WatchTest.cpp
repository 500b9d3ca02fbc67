// SPDX-License-Identifier: GPL-3.0-or-later
// Source folders that stay current: with real inotify, a font copied into a source, or
// a folder of fonts moved in, shows in the library after a quiet second without Refresh;
// past the system's limit of watched folders the window says so once and goes on.
#include "StateTestSupport.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

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
