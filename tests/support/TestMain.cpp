// Shared main for every test executable.
#include "TestSupport.h"

#ifdef MORVANE_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

int main(int argc, char **argv)
{
    if (!TestSupport::isolateProcess())
        return 2;
    testing::InitGoogleTest(&argc, argv);
    TestSupport::isolateEachTest();
    TestApplication app(argc, argv);
    const int result = RUN_ALL_TESTS();
    TestSupport::removeProcessRoot();
    return result;
}
