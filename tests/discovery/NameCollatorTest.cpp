// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "discovery/NameCollator.h"

#include <random>

using namespace Qt::StringLiterals;

namespace {

// What ICU itself says, through a plain case-insensitive QCollator and a stable sort.
QStringList icuOrder(QStringList names, const QLocale &locale)
{
    QCollator collator(locale);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(names.begin(), names.end(),
                     [&collator](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
    return names;
}

QStringList collatorOrder(const QStringList &names, const QLocale &locale)
{
    std::vector<QString> items(names.begin(), names.end());
    NameCollator(locale).stableSort(items, [](const QString &name) { return QStringView(name); });
    return QStringList(items.begin(), items.end());
}

QStringList randomAsciiNames(int count)
{
    std::mt19937 random(7);
    const QString alphabet = u"aAbBcChHzZ09 -_.,'()&+#~!@$%^=[]{};`|/:<>?*\"\\sS5tT"_s;
    QStringList names;
    for (int i = 0; i < count; ++i) {
        QString name;
        const int length = 1 + static_cast<int>(random() % 8);
        for (int k = 0; k < length; ++k)
            name += alphabet.at(static_cast<qsizetype>(random() % static_cast<unsigned>(alphabet.size())));
        names.append(name);
    }
    return names;
}

} // namespace

TEST(NameCollator, FastPathOrdersExactlyAsIcuDoes)
{
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    ASSERT_TRUE(NameCollator(english).hasAsciiFastPath());
    const QStringList names = randomAsciiNames(3000);
    EXPECT_EQ(collatorOrder(names, english), icuOrder(names, english));
    // Short lists take another sorting route; they must agree as well.
    for (int start = 0; start + 10 <= 300; start += 10) {
        const QStringList few = names.mid(start, 10);
        EXPECT_EQ(collatorOrder(few, english), icuOrder(few, english));
    }
    // Mixed with non-ASCII names the whole list goes through ICU.
    const QStringList mixed{u"Zeta"_s, u"Éclair"_s, u"eb"_s, u"ÉCLAIR"_s, u"ed"_s, u"éclair"_s};
    EXPECT_EQ(collatorOrder(mixed, english), icuOrder(mixed, english));
}

TEST(NameCollator, LocalesWithContractionsFollowIcu)
{
    // Czech sorts "ch" after "h"; Danish sorts "aa" as the last letter.
    for (const QLocale &locale : {QLocale(QLocale::Czech, QLocale::CzechRepublic), QLocale(QLocale::Danish, QLocale::Denmark)}) {
        EXPECT_FALSE(NameCollator(locale).hasAsciiFastPath()) << locale.name().toStdString();
        const QStringList names{u"chata"_s, u"hrad"_s, u"cihla"_s, u"Aarhus"_s, u"zebra"_s, u"abc"_s, u"Hrad"_s};
        EXPECT_EQ(collatorOrder(names, locale), icuOrder(names, locale)) << locale.name().toStdString();
        EXPECT_EQ(collatorOrder(names + randomAsciiNames(200), locale), icuOrder(names + randomAsciiNames(200), locale));
    }
    const QStringList czech = collatorOrder({u"chata"_s, u"hrad"_s, u"cihla"_s}, QLocale(QLocale::Czech));
    EXPECT_EQ(czech, (QStringList{u"cihla"_s, u"hrad"_s, u"chata"_s}));
}
