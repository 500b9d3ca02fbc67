#include "TestSupport.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/MainWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

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
    TestSupport::writeFile(PersistenceService::defaultStorageFolder() + QStringLiteral("/sources.json"),
                           "[{\"id\":\"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2\",\"name\":\"Fonts\",\"path\":\"" +
                               library.toUtf8() + "\"}]");
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
