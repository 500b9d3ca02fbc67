// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"
#include "WindowFixture.h"

#include "services/Translations.h"
#include "ui/sidebar/SidebarModel.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

// A German user gets Morvane's texts and Qt's own in German, with German plurals.
TEST(Translation, AGermanUserGetsGermanTextsPluralsAndQtsOwnButtons)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    ASSERT_EQ(Translations::install(*qApp), u"de"_s);

    const QList<std::pair<QString, QString>> shown{
        {SidebarModel::fontCount(1), u"1 Schrift"_s},  {SidebarModel::fontCount(3), u"3 Schriften"_s},
        {SidebarModel::itemCount(1), u"1 Eintrag"_s},  {SidebarModel::itemCount(0), u"0 Einträge"_s},
    };
    for (const auto &[text, german] : shown)
        EXPECT_EQ(text, german);

    QDialogButtonBox buttons(QDialogButtonBox::Cancel);
    EXPECT_EQ(buttons.button(QDialogButtonBox::Cancel)->text(), u"Abbrechen"_s); // from Qt's own translation

    // The window on an empty library: its empty state speaks German.
    const auto window = WindowFixture::openWindow();
    QStringList labels;
    for (const QLabel *label : window->findChildren<QLabel *>())
        labels.append(label->text());
    EXPECT_TRUE(labels.contains(u"Keine Schriftquellen"_s)) << labels.join(u" | "_s).toStdString();
}

// Any other language that Morvane has no translation for keeps English and its plurals.
TEST(Translation, ALanguageWithoutATranslationKeepsEnglishPlurals)
{
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    EXPECT_EQ(Translations::install(*qApp), u"en"_s);
    EXPECT_EQ(SidebarModel::fontCount(1), u"1 font"_s);
    EXPECT_EQ(SidebarModel::fontCount(2), u"2 fonts"_s);
}
