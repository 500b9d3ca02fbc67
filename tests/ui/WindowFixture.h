// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestSupport.h"
#include "ViewTestSupport.h"

#include "Assembly.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/window/MainWindow.h"

#include <QTest>

#include <memory>

namespace WindowFixture {

inline const QString kSourceId = QStringLiteral("6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2");

// A saved library of one source named "Fonts", as a previous run leaves it.
inline void saveOneSource(const QString &library)
{
    TestSupport::writeFile(PersistenceService::defaultStorageFolder() + QStringLiteral("/sources.json"),
                           "[{\"id\":\"" + kSourceId.toUtf8() + "\",\"name\":\"Fonts\",\"path\":\"" +
                               library.toUtf8() + "\"}]");
}

// A saved source "Fonts" holding one folder "Sans" with one font: the library's path.
inline QString saveSansLibrary()
{
    const QString library = TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/Fonts"));
    TestSupport::writeFile(library + QStringLiteral("/Sans/a.ttf"));
    saveOneSource(library);
    return library;
}

// The window on that library, shown, its scan finished; fonts activate instantly.
inline std::unique_ptr<MainWindow> openWindow(std::unique_ptr<FontActivating> activation = std::make_unique<InstantActivation>())
{
    auto window = std::make_unique<MainWindow>(Assembly::store(std::move(activation)));
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window->state().isIndexing() && !window->state().isProcessing(); },
                                20'000));
    return window;
}

} // namespace WindowFixture
