// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Font paths are held by the library scan, the catalogue and the activation links alike;
// with 100,000 fonts each copy of them is some 14 MB. Paths put through share() are one
// string in memory, whoever read them first.
namespace SharedPaths {

// The copy already held for an equal path, or `path` itself, kept from now on.
QString share(const QString &path);
// Lets go of paths nobody else holds any more (after a scan or a big batch).
void dropUnused();
// How many paths are held (tests).
qsizetype size();

} // namespace SharedPaths
