// SPDX-License-Identifier: GPL-3.0-or-later
#include "StateTestSupport.h"

#include <QSignalSpy>

#include <atomic>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class Search : public testing::Test, public StoreFixture
{
protected:
    Search()
    {
        for (const QString &file : {u"Noto Sans/a.ttf"_s, u"Noto Serif/b.ttf"_s, u"Sans Pro/Abc/c.ttf"_s,
                                    u"Display/abc/d.ttf"_s, u"Display/Fontless/readme.txt"_s})
            writeFile(path(file));
        store->addSource(library);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !store->isIndexing(); }, 20'000));
    }

    QStringList resultNames()
    {
        QStringList names;
        for (const FolderSearchResult &result : store->searchResults())
            names.append(result.folder.name().toString());
        return names;
    }

    bool waitForResults() { return QTest::qWaitFor([this] { return !store->isSearchingFolders(); }, 20'000); }
};

} // namespace

TEST_F(Search, TheIndexHoldsEveryFolderWithFontsSortedByName)
{
    QStringList names;
    for (const FolderSearchResult &result : store->searchIndex())
        names.append(result.folder.name().toString());
    // abc and Abc tie, so either may come first; the rest follow by name.
    ASSERT_EQ(names.size(), 6);
    EXPECT_EQ(QSet<QString>(names.begin(), names.begin() + 2), (QSet<QString>{u"abc"_s, u"Abc"_s}));
    EXPECT_EQ(names.mid(2), (QStringList{u"Display"_s, u"Noto Sans"_s, u"Noto Serif"_s, u"Sans Pro"_s}));
    EXPECT_FALSE(names.contains(u"Fontless"_s));
    const FolderSearchResult abc = store->searchIndex().at(names.indexOf(u"Abc"_s));
    EXPECT_EQ(nodeNames(abc.navigationPath), (QStringList{u"Sans Pro"_s, u"Abc"_s}));
}

TEST_F(Search, FindsFoldersByAnyPartOfTheirNameInAnyCase)
{
    store->setSearchQuery(u"SANS"_s);
    EXPECT_TRUE(store->isSearchingFolders());
    ASSERT_TRUE(waitForResults());
    EXPECT_EQ(resultNames(), (QStringList{u"Noto Sans"_s, u"Sans Pro"_s}));
    store->setSearchQuery(u"ans"_s);
    EXPECT_TRUE(store->searchResults().isEmpty()); // cleared at once, before the new results
    EXPECT_TRUE(store->isSearchingFolders());
    ASSERT_TRUE(waitForResults());
    EXPECT_EQ(resultNames(), (QStringList{u"Noto Sans"_s, u"Sans Pro"_s}));

    // Jumping to a result ends the search.
    store->navigateToSearchResult(store->searchResults().first());
    EXPECT_EQ(store->searchQuery(), QString());
    EXPECT_TRUE(store->searchResults().isEmpty());
    EXPECT_FALSE(store->isSearchingFolders());
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"Noto Sans"_s});
}

TEST_F(Search, TypingOnWithinThePauseRunsOneFilter)
{
    // Filter runs counted where they run, not by what reaches the results.
    std::atomic_int runs = 0;
    store->setSearchFilterForTesting([&runs](const QList<FolderSearchResult> &index, const QString &query,
                                             const CancellationToken &cancellation) {
        ++runs;
        return AppState::filterIndex(index, query, cancellation);
    });
    QSignalSpy results(store.get(), &AppState::searchResultsChanged);
    store->setSearchQuery(u"ab"_s);
    QCoreApplication::processEvents(); // typing on within the pause, whatever the machine's speed
    store->setSearchQuery(u"abc"_s);
    ASSERT_TRUE(waitForResults());
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(results.count(), 1);
    EXPECT_EQ(resultNames().size(), 2); // abc and Abc
    EXPECT_FALSE(results.wait(400));    // the "ab" search never reports

    QSignalSpy query(store.get(), &AppState::searchQueryChanged);
    store->setSearchQuery(u"abc"_s); // the same value starts nothing
    EXPECT_EQ(query.count(), 0);
    EXPECT_FALSE(store->isSearchingFolders());
}

TEST_F(Search, BlankQueriesSearchNothing)
{
    store->setSearchQuery(u"Noto"_s);
    ASSERT_TRUE(waitForResults());
    ASSERT_FALSE(store->searchResults().isEmpty());
    store->setSearchQuery(u" \t "_s);
    EXPECT_FALSE(store->isSearching());
    EXPECT_FALSE(store->isSearchingFolders());
    EXPECT_TRUE(store->searchResults().isEmpty());
    QSignalSpy results(store.get(), &AppState::searchResultsChanged);
    EXPECT_FALSE(results.wait(400));
}

TEST_F(Search, ARefreshRunsTheQueryAgainOnTheNewIndex)
{
    store->setSearchQuery(u"Script"_s);
    ASSERT_TRUE(waitForResults());
    EXPECT_TRUE(store->searchResults().isEmpty());
    writeFile(path(u"Script/s.ttf"_s));
    store->refreshFileSystem();
    QSignalSpy results(store.get(), &AppState::searchResultsChanged);
    ASSERT_TRUE(results.wait(20'000)); // the new index's answer replaces the old one in one step
    EXPECT_EQ(resultNames(), QStringList{u"Script"_s});
    EXPECT_EQ(results.count(), 1) << "the shown results were never emptied in between";
}
