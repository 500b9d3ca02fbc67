// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Failures of saving, loading, tagging and activating are reported as one line on
// standard output, in words fixed so scripts can look for them; the window says it
// in its own words. Notes about Morvane's own work go through Diagnostics.h instead.
namespace Console {
void printLine(const QString &line);
}
