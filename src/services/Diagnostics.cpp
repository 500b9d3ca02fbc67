// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/Diagnostics.h"

Q_LOGGING_CATEGORY(lcActivation, "morvane.activation", QtInfoMsg)
Q_LOGGING_CATEGORY(lcLibrary, "morvane.library", QtInfoMsg)
Q_LOGGING_CATEGORY(lcStorage, "morvane.storage", QtInfoMsg)
