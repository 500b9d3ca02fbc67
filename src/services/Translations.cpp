// SPDX-License-Identifier: GPL-3.0-or-later
#include "Translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace Translations {
namespace {

// Installed beside the program (share/morvane/translations), else built into it.
QStringList folders()
{
    return {QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../share/morvane/translations"_s), u":/i18n"_s};
}

QTranslator *load(QCoreApplication &app, const QLocale &locale, const QString &name, const QStringList &where)
{
    auto *translator = new QTranslator(&app);
    for (const QString &folder : where) {
        if (translator->load(locale, name, u"_"_s, folder) && QCoreApplication::installTranslator(translator))
            return translator;
    }
    delete translator;
    return nullptr;
}

} // namespace

QString install(QCoreApplication &app)
{
    // The last installed is asked first: English underneath, the user's language on top.
    load(app, QLocale(QLocale::English), u"morvane"_s, folders());
    QString language = u"en"_s;
    const QLocale locale;
    if (locale.language() != QLocale::English && locale.language() != QLocale::C) {
        if (const QTranslator *ours = load(app, locale, u"morvane"_s, folders()))
            language = ours->language().section(u'_', 0, 0);
    }
    load(app, locale, u"qtbase"_s, {QLibraryInfo::path(QLibraryInfo::TranslationsPath)});
    return language;
}

} // namespace Translations
