// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

// What Morvane notes about its own work, beyond the one-line failure messages it prints
// on standard output: Qt's logging on standard error, in "morvane.*" categories. Info
// and warnings show; debug lines (timings, counts) only when asked for, as with
// QT_LOGGING_RULES="morvane.*.debug=true".
Q_DECLARE_LOGGING_CATEGORY(lcActivation) // morvane.activation: batches, fontconfig, links
Q_DECLARE_LOGGING_CATEGORY(lcLibrary)    // morvane.library: scans, sources that can't be reached
Q_DECLARE_LOGGING_CATEGORY(lcStorage)    // morvane.storage: list files, settings, what was rebuilt
