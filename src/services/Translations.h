// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QCoreApplication;

// Morvane's texts in the user's language, and Qt's own (file dialogs, buttons), where a
// translation is there. English is a translation too: it gives counts their plurals
// ("1 font", "12 fonts").
namespace Translations {

// Installs the translations for the user's languages (QLocale()) on the application.
// Returns the language of Morvane's texts ("de", or "en" when none matched).
QString install(QCoreApplication &app);

} // namespace Translations
