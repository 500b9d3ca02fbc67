// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "model/CollectionRecords.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

QStringList namesAfterSorting(const QList<QPair<QString, int>> &input)
{
    QList<FontCollection> collections;
    for (const auto &[name, tag] : input) {
        FontCollection collection = FontCollection::create(name);
        collection.members.append({QString::number(tag), false});
        collections.append(collection);
    }
    QCollator collator{QLocale()};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    sortCollections(collections, collator);
    QStringList result;
    for (const FontCollection &collection : collections)
        result.append(collection.name + u'#' + collection.members.first().path);
    return result;
}

} // namespace

TEST(CollectionOrder, FavoritesFirstThenLocalizedCaseInsensitiveAndStable)
{
    EXPECT_EQ(namesAfterSorting({{u"beta"_s, 1}, {u"Alpha"_s, 2}, {u"fAvOrItEs"_s, 3}, {u"Zed"_s, 4}}),
              (QStringList{u"fAvOrItEs#3"_s, u"Alpha#2"_s, u"beta#1"_s, u"Zed#4"_s}));
    // Equal names keep their order, Favorites twice included.
    EXPECT_EQ(namesAfterSorting({{u"Sans"_s, 1}, {u"favorites"_s, 2}, {u"sans"_s, 3}, {u"Favorites"_s, 4},
                                 {u"SANS"_s, 5}}),
              (QStringList{u"favorites#2"_s, u"Favorites#4"_s, u"Sans#1"_s, u"sans#3"_s, u"SANS#5"_s}));
    // Localized: an accented letter sorts with its base letter, not after z.
    EXPECT_EQ(namesAfterSorting({{u"zeta"_s, 1}, {u"Éclair"_s, 2}, {u"eb"_s, 3}, {u"ed"_s, 4}}),
              (QStringList{u"eb#3"_s, u"Éclair#2"_s, u"ed#4"_s, u"zeta#1"_s}));
}
