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
