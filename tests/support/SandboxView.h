// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

#include <optional>

namespace TestSupport {

// What a program in a Flatpak sandbox sees of the user's fonts, made with bwrap as
// Flatpak makes it: the user's font folder bound read-only at /run/host/user-fonts and
// fontconfig's cache folder at /run/host/user-fonts-cache, this test's whole folder (its
// home, its sources) out of sight, and a fontconfig configuration that reads only that
// folder, as the path its caches name. Each font fc-list lists inside whose file can be
// read there (a cache may name one that can't), mapped back to the font our link stands
// for, with its family. None when bwrap can't run here.
std::optional<QHash<QString, QString>> familiesSeenInSandbox();

} // namespace TestSupport
