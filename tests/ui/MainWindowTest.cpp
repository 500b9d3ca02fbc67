#include "TestSupport.h"

#include "ui/MainWindow.h"

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
