// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>

class MainWindow;

// For `make bench` only (MORVANE_STARTUP_REPORT set): prints the time from the
// application object to the window's first paint, then, once the saved library is
// scanned and shown, the resident memory, and quits.
namespace StartupReport {

bool requested();
void watch(MainWindow &window, QElapsedTimer sinceStart);

} // namespace StartupReport
