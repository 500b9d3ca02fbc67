// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

#include <optional>

namespace TestSupport {

// What a program in a Flatpak sandbox sees of the user's fonts, made with bwrap as
// Flatpak makes it: the user's font folder bound read-only at /run/host/user-fonts,
// this test's whole folder (its home, its sources) out of sight, and a fontconfig
// configuration that reads only that folder. Each font fc-list lists inside, mapped
// back to the font our link stands for, with its family. None when bwrap can't run here.
std::optional<QHash<QString, QString>> familiesSeenInSandbox();

} // namespace TestSupport
