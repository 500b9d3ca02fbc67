// SPDX-License-Identifier: GPL-3.0-or-later
// Shared main for every test executable.
#include "TestSupport.h"

#include "services/Translations.h"

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
    int result = 0;
    {
        TestApplication app(argc, argv);
        Translations::install(app); // English plurals, as the program has them
        result = RUN_ALL_TESTS();
    } // the application may still read the folder's font configuration as it goes
    TestSupport::removeProcessRoot();
    return result;
}
