#include "TestSupport.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/CollectionView.h"
#include "ui/ColumnBrowserView.h"
#include "ui/MainWindow.h"
#include "ui/SourceListView.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

namespace {

// A saved library of one source, as a previous run leaves it.
void saveOneSource(const QString &library)
{
    TestSupport::writeFile(PersistenceService::defaultStorageFolder() + QStringLiteral("/sources.json"),
                           "[{\"id\":\"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2\",\"name\":\"Fonts\",\"path\":\"" +
                               library.toUtf8() + "\"}]");
}

} // namespace

TEST(MainWindow, ShowsTitledAndClosesCleanly)
{
    MainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Morvane"));
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(window.isVisible());
}

// A save that fails is shown in the window until a save succeeds again.
TEST(MainWindow, ShowsAFailedSaveUntilASaveSucceeds)
{
    MainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QLabel *banner = nullptr;
    for (QLabel *label : window.findChildren<QLabel *>()) {
        if (label->accessibleName() == QStringLiteral("Save problem"))
            banner = label;
    }
    ASSERT_NE(banner, nullptr);
    EXPECT_FALSE(banner->isVisible());

    // A folder where the file should be: the replacing rename fails.
    const QString storage = PersistenceService::defaultStorageFolder();
    const QString blocker = TestSupport::makeDir(storage + QStringLiteral("/sources.json/inside"));
    QSignalSpy failure(&window.state(), &AppState::saveFailureChanged);
    TestSupport::capturedStdout([&] {
        window.state().addSource(TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/Fonts")));
        ASSERT_TRUE(failure.wait(10'000));
    });
    EXPECT_TRUE(banner->isVisible());
    EXPECT_EQ(banner->text(), QStringLiteral("Morvane can't save its library: Is a directory. Changes made now will "
                                             "be lost when Morvane quits."));

    ASSERT_TRUE(QDir(storage + QStringLiteral("/sources.json")).removeRecursively());
    window.state().addSource(TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/More")));
    ASSERT_TRUE(failure.wait(10'000));
    EXPECT_FALSE(banner->isVisible());
    EXPECT_TRUE(window.state().saveFailure().isEmpty());
    EXPECT_TRUE(QFileInfo(storage + QStringLiteral("/sources.json")).isFile());
}

// Tab reaches every control of the window, and each tells a screen reader its name.
TEST(MainWindow, EveryControlTabReachesHasAnAccessibleName)
{
    const QString library = TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/Fonts"));
    TestSupport::writeFile(library + QStringLiteral("/Sans/a.ttf"));
    saveOneSource(library);
    MainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.state().isIndexing() && !window.state().isProcessing(); }, 20'000));
    window.activateWindow();
    QWidget *first = window.nextInFocusChain();
    QSet<QWidget *> seen;
    for (QWidget *widget = first; widget && !seen.contains(widget); widget = widget->nextInFocusChain()) {
        seen.insert(widget);
        if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisibleTo(&window) || widget == &window)
            continue;
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
    }
    EXPECT_GE(seen.size(), 3); // the path bar's button and the column, at least
}

// The detail area follows the sidebar: a source's browser, or a collection's view,
// into whose members Right moves the keyboard.
TEST(MainWindow, ShowsTheSelectedCollectionBesideTheSidebar)
{
    const QString library = TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/Fonts"));
    const QString font = TestSupport::writeFile(library + QStringLiteral("/a.ttf"));
    saveOneSource(library);
    MainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.state().isIndexing(); }, 20'000));
    EXPECT_EQ(window.collectionView(), nullptr);
    EXPECT_TRUE(window.browser().isVisible());

    window.state().createCollection(QStringLiteral("Picks"));
    window.state().addToCollection(window.state().collections().first().id, FontNode::fontFile(font));
    ASSERT_TRUE(window.collectionView());
    EXPECT_TRUE(window.collectionView()->isVisible());
    EXPECT_FALSE(window.browser().isVisible());
    window.sidebar().collectionsList()->setFocus();
    EXPECT_EQ(window.collectionView()->memberList()->model()->rowCount(), 1) << "the view shows the member just added";
    QTest::keyClick(window.sidebar().collectionsList(), Qt::Key_Right);
    EXPECT_TRUE(window.collectionView()->memberList()->hasFocus());
    EXPECT_EQ(window.collectionView()->memberList()->currentIndex().row(), 0);

    window.state().setSidebarSelection(SidebarItem(window.state().sources().first()));
    EXPECT_EQ(window.collectionView(), nullptr);
    EXPECT_TRUE(window.browser().isVisible());
}
