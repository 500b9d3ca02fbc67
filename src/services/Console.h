// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Failures of saving, loading, tagging and activating are reported as one line on
// standard output; there is no log file and nothing reaches the user interface.
namespace Console {
void printLine(const QString &line);
}
