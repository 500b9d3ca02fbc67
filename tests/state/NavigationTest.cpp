// SPDX-License-Identifier: GPL-3.0-or-later
#include "StateTestSupport.h"

#include <QFile>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

// Library/
//   Sans/  Grotesk/ g1.otf g2.otf   a.ttf b.ttf c.ttf
//   Serif/ s.otf
//   top.ttf
class Navigation : public testing::Test, public StoreFixture
{
protected:
    Navigation()
    {
        for (const QString &file : {u"Sans/Grotesk/g1.otf"_s, u"Sans/Grotesk/g2.otf"_s, u"Sans/a.ttf"_s, u"Sans/b.ttf"_s,
                                    u"Sans/c.ttf"_s, u"Serif/s.otf"_s, u"top.ttf"_s})
            writeFile(path(file));
        source = addSource(library);
        store->setSidebarSelection(SidebarItem(source));
        scan();
    }
    FolderSource source;
};

} // namespace

TEST(NavigationWithoutSource, NothingToShowAndArrowsDoNothing)
{
    StoreFixture f;
    EXPECT_TRUE(f.store->buildColumns().isEmpty());
    QSignalSpy path(f.store.get(), &AppState::navigationPathChanged);
    QSignalSpy columns(f.store.get(), &AppState::cachedColumnsChanged);
    f.store->handleArrowUp();
    f.store->handleArrowDown();
    f.store->handleArrowLeft();
    f.store->handleArrowRight();
    EXPECT_EQ(path.count(), 0);
    EXPECT_EQ(columns.count(), 0);
    EXPECT_FALSE(f.store->selectedSource().has_value());
    EXPECT_FALSE(f.store->selectedFont().has_value());
}

TEST_F(Navigation, ColumnsFollowThePathAndShareTheScansLists)
{
    EXPECT_EQ(columnNames(*store), QStringList{u"Sans,Serif,top.ttf"_s});
    store->selectNode(folder(u"Sans"_s), 0);
    EXPECT_EQ(columnNames(*store), (QStringList{u"Sans,Serif,top.ttf"_s, u"Grotesk,a.ttf,b.ttf,c.ttf"_s}));
    store->selectNode(folder(u"Sans/Grotesk"_s), 1);
    store->selectNode(font(u"Sans/Grotesk/g2.otf"_s), 2);
    EXPECT_EQ(store->cachedColumns().size(), 3); // a font adds no column
    ASSERT_TRUE(store->selectedFont().has_value());
    EXPECT_EQ(store->selectedFont()->name(), u"g2.otf"_s);
    EXPECT_EQ(store->activeColumnIndex(), 2);

    // Picking in an earlier column cuts the path there.
    store->selectNode(font(u"top.ttf"_s), 0);
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"top.ttf"_s});
    EXPECT_EQ(store->cachedColumns().size(), 1);
    // A level beyond the path's end just appends.
    store->selectNode(folder(u"Serif"_s), 5);
    EXPECT_EQ(nodeNames(store->navigationPath()), (QStringList{u"top.ttf"_s, u"Serif"_s}));
    EXPECT_EQ(store->activeColumnIndex(), 5);
    EXPECT_EQ(store->selectedNode(1)->name(), u"Serif"_s);
    EXPECT_FALSE(store->selectedNode(2).has_value());

    // Selecting what is selected notifies no path change; the columns are rebuilt anyway.
    QSignalSpy pathChanged(store.get(), &AppState::navigationPathChanged);
    QSignalSpy indexChanged(store.get(), &AppState::activeColumnIndexChanged);
    QSignalSpy columnsChanged(store.get(), &AppState::cachedColumnsChanged);
    store->selectNode(folder(u"Serif"_s), 1);
    EXPECT_EQ(pathChanged.count(), 0);
    EXPECT_EQ(indexChanged.count(), 1); // 5 -> 1
    store->selectNode(folder(u"Serif"_s), 1);
    EXPECT_EQ(pathChanged.count(), 0);
    EXPECT_EQ(indexChanged.count(), 1);
    EXPECT_EQ(columnsChanged.count(), 2);
}

TEST_F(Navigation, UpAndDownStopAtTheEnds)
{
    store->selectNode(folder(u"Sans"_s), 0);
    store->selectNode(font(u"Sans/b.ttf"_s), 1); // column: Grotesk, a, b, c
    store->handleArrowUp();
    store->handleArrowUp();
    EXPECT_EQ(store->selectedNode(1)->name(), u"Grotesk"_s);
    EXPECT_EQ(store->cachedColumns().size(), 3); // Grotesk's contents opened
    QSignalSpy pathChanged(store.get(), &AppState::navigationPathChanged);
    store->handleArrowUp(); // no wrap-around
    EXPECT_EQ(pathChanged.count(), 0);
    for (int i = 0; i < 5; ++i)
        store->handleArrowDown();
    EXPECT_EQ(store->selectedNode(1)->name(), u"c.ttf"_s);
    EXPECT_EQ(store->activeColumnIndex(), 1);
}

TEST_F(Navigation, UpFromNowhereLandsOnTheBottomRow)
{
    store->handleArrowUp();
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"top.ttf"_s});
}

TEST_F(Navigation, DownFromNowhereLandsOnTheTopRow)
{
    store->handleArrowDown();
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"Sans"_s});
    EXPECT_EQ(store->cachedColumns().size(), 2);
}

TEST_F(Navigation, AnActiveIndexBeyondTheLastColumnActsOnTheLastColumn)
{
    store->selectNode(folder(u"Sans"_s), 0);
    store->selectNode(font(u"Sans/c.ttf"_s), 7);
    ASSERT_EQ(store->cachedColumns().size(), 2);
    store->handleArrowUp();
    EXPECT_EQ(nodeNames(store->navigationPath()), (QStringList{u"Sans"_s, u"b.ttf"_s}));
    EXPECT_EQ(store->activeColumnIndex(), 1);
}

TEST_F(Navigation, RightEntersFoldersOnlyAndLeftCutsThePath)
{
    store->selectNode(folder(u"Sans"_s), 0);
    store->handleArrowRight();
    EXPECT_EQ(store->activeColumnIndex(), 1);
    EXPECT_EQ(store->selectedNode(1)->name(), u"Grotesk"_s);
    store->handleArrowRight();
    EXPECT_EQ(store->selectedNode(2)->name(), u"g1.otf"_s);
    EXPECT_EQ(store->activeColumnIndex(), 2);
    QSignalSpy pathChanged(store.get(), &AppState::navigationPathChanged);
    store->handleArrowRight(); // on a font: nothing
    EXPECT_EQ(pathChanged.count(), 0);
    EXPECT_EQ(store->activeColumnIndex(), 2);

    // Left keeps the selection of the newly active column and drops what is right of it.
    store->selectNode(font(u"Sans/Grotesk/extra.otf"_s), 3); // four nodes, column 3 active
    store->handleArrowLeft();
    EXPECT_EQ(store->activeColumnIndex(), 2);
    EXPECT_EQ(nodeNames(store->navigationPath()), (QStringList{u"Sans"_s, u"Grotesk"_s, u"g1.otf"_s}));
    store->handleArrowLeft();
    EXPECT_EQ(store->activeColumnIndex(), 1);
    EXPECT_EQ(nodeNames(store->navigationPath()), (QStringList{u"Sans"_s, u"Grotesk"_s}));
    EXPECT_EQ(store->cachedColumns().size(), 3);
    store->handleArrowLeft();
    store->handleArrowLeft(); // at column 0: nothing more
    EXPECT_EQ(store->activeColumnIndex(), 0);
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"Sans"_s});
}

TEST_F(Navigation, RightOnAFolderWithAnEmptyColumnDoesNothing)
{
    // A folder the scan knows no contents of opens an empty column.
    store->selectNode(FontNode::folder(path(u"Unscanned"_s)), 0);
    EXPECT_TRUE(store->cachedColumns().constLast().isEmpty());
    store->handleArrowRight();
    EXPECT_EQ(store->activeColumnIndex(), 0);
    EXPECT_EQ(store->navigationPath().size(), 1);
}

TEST(NavigationPath, BuiltFromRootToTarget)
{
    const auto ids = [](const QList<FontNode> &nodes) {
        QStringList result;
        for (const FontNode &node : nodes) {
            EXPECT_TRUE(node.isDirectory());
            result.append(node.id());
        }
        return result;
    };
    EXPECT_TRUE(AppState::buildNavigationPath(u"/a/b"_s, u"/a/b"_s).isEmpty());
    EXPECT_TRUE(AppState::buildNavigationPath(u"/a/b"_s, u"/a/bc"_s).isEmpty());
    EXPECT_TRUE(AppState::buildNavigationPath(u"/a/b"_s, u"/elsewhere/x"_s).isEmpty());
    EXPECT_EQ(ids(AppState::buildNavigationPath(u"/"_s, u"/x/y"_s)), (QStringList{u"/x"_s, u"/x/y"_s}));
    EXPECT_EQ(ids(AppState::buildNavigationPath(u"/a/b/"_s, u"/a/b/c/./d/../e.ttf"_s)),
              (QStringList{u"/a/b/c"_s, u"/a/b/c/e.ttf"_s}));
    EXPECT_EQ(ids(AppState::buildNavigationPath(u"/a/b"_s, u"/a/b//c"_s)), QStringList{u"/a/b/c"_s});
}

TEST_F(Navigation, JumpsToSearchResultsAndCollectionMembers)
{
    const FolderSource other = addSource(makeDir(testRoot() + u"/Other"_s));
    store->setSidebarSelection(SidebarItem(other));
    store->setSearchQuery(u"grot"_s);
    QList<SidebarItem> jumped;
    QObject::connect(store.get(), &AppState::jumped, [&jumped](const SidebarItem &target) { jumped.append(target); });
    const FontNode grotesk = folder(u"Sans/Grotesk"_s);
    store->navigateToSearchResult(
        FolderSearchResult::make(grotesk, source, AppState::buildNavigationPath(source.path, grotesk.path())));
    EXPECT_EQ(store->searchQuery(), QString());
    EXPECT_EQ(store->selectedSource(), source);
    EXPECT_EQ(jumped, QList<SidebarItem>{SidebarItem(source)});
    EXPECT_EQ(nodeNames(store->navigationPath()), (QStringList{u"Sans"_s, u"Grotesk"_s}));
    EXPECT_EQ(store->activeColumnIndex(), 1);
    EXPECT_EQ(columnNames(*store).constLast(), u"g1.otf,g2.otf"_s);

    // A file member: the folders down to it, then the file itself.
    store->setSidebarSelection(SidebarItem(other));
    store->setSearchQuery(u"kept"_s);
    store->navigateToMember({path(u"Sans/Grotesk/g2.otf"_s), false});
    EXPECT_EQ(nodeNames(store->navigationPath()), (QStringList{u"Sans"_s, u"Grotesk"_s, u"g2.otf"_s}));
    EXPECT_EQ(store->activeColumnIndex(), 2);
    EXPECT_EQ(store->selectedFont()->path(), path(u"Sans/Grotesk/g2.otf"_s));
    EXPECT_EQ(store->searchQuery(), u"kept"_s); // a member jump leaves the search alone
    EXPECT_EQ(jumped.size(), 2);

    store->navigateToMember({path(u"Serif"_s), true});
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"Serif"_s});
    store->navigateToMember({path(u"top.ttf"_s), false});
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"top.ttf"_s});
    EXPECT_EQ(store->activeColumnIndex(), 0);

    // A file that appeared after the last scan is unknown: nothing happens.
    writeFile(path(u"Serif/new.otf"_s));
    store->navigateToMember({path(u"Serif/new.otf"_s), false});
    EXPECT_EQ(nodeNames(store->navigationPath()), QStringList{u"top.ttf"_s});
}

TEST_F(Navigation, AnotherSidebarItemStartsTheBrowserAgain)
{
    store->selectNode(folder(u"Sans"_s), 0);
    store->selectNode(font(u"Sans/a.ttf"_s), 1);
    store->setSidebarSelection(SidebarItem(source)); // the same item: nothing changes
    EXPECT_EQ(store->navigationPath().size(), 2);

    store->createCollection(u"Picked"_s); // selects the new collection
    EXPECT_TRUE(store->navigationPath().isEmpty());
    EXPECT_EQ(store->activeColumnIndex(), 0);
    EXPECT_TRUE(store->cachedColumns().isEmpty());
    EXPECT_EQ(store->cachedColumns(), store->buildColumns());
    store->setSidebarSelection(SidebarItem(source));
    EXPECT_EQ(columnNames(*store), QStringList{u"Sans,Serif,top.ttf"_s});
}
