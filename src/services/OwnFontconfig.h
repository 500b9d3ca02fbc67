// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

struct _FcConfig;

// Morvane never draws with the fonts it activates (previews read the files), so its own
// process leaves its link folder out of the fontconfig configuration Qt uses: a start
// with 100,000 fonts active then costs what one with none does, and a pipe or a dead
// network file behind one of our links can't hold the window before Morvane has had a
// chance to set it aside. Activation keeps the user's own configuration.
namespace OwnFontconfig {

// Before the application object: points fontconfig at a configuration that includes
// the user's and rejects `linkFolder`. Returns the configuration file it wrote (empty
// when it could not, and then nothing changed).
QString leaveOut(const QString &linkFolder, const QString &folderForConfig);
// Once Qt has read its fonts: programs started from Morvane see the user's own.
void restoreEnvironment();
// The user's configuration, for activation: loaded from the file in force before
// leaveOut(), or fontconfig's default.
_FcConfig *loadUserConfig();

} // namespace OwnFontconfig
