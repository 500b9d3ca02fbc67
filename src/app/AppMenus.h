// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class MainWindow;
class QMenuBar;

// The menu bar's commands: File ("Add Font Folder...", "New Collection", "Refresh
// Sources", "Quit"), Edit ("Deactivate All Fonts") and Help ("About Morvane"). None is
// ever disabled; each works the same from its shortcut.
namespace AppMenus {

void install(MainWindow &window);
// What "About Morvane" says: the version, the program's licence, where data is kept.
QString aboutText();

} // namespace AppMenus
