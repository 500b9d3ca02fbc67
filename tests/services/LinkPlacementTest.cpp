// SPDX-License-Identifier: GPL-3.0-or-later
// Where new font links go, decided from shard sizes alone: no disk, no fontconfig.
#include "TestSupport.h"

#include "services/LinkPlacement.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kCapacity = 4;

// How many of the placed links each shard takes, as "shard:n" in the order first placed.
QStringList tally(const QStringList &placed)
{
    QStringList order;
    QHash<QString, int> counts;
    for (const QString &shard : placed) {
        if (!counts.contains(shard))
            order.append(shard);
        ++counts[shard];
    }
    QStringList result;
    for (const QString &shard : order)
        result.append(shard + u':' + QString::number(counts.value(shard)));
    return result;
}

} // namespace

TEST(LinkPlacement, FillsWhatCostsTheLeastRescanning)
{
    struct Case
    {
        const char *what;
        qsizetype count;
        QHash<QString, qsizetype> sizes;
        QSet<QString> beingFilled;
        QSet<QString> excluded;
        QStringList expected;
    };
    const QList<Case> cases{
        {"one font goes to the least full shard", 1, {{u"a"_s, 3}, {u"b"_s, 1}, {u"c"_s, 2}}, {}, {}, {u"b:1"_s}},
        {"a small change spreads over the least full", 3, {{u"a"_s, 3}, {u"b"_s, 2}, {u"c"_s, 4}}, {}, {}, {u"b:2"_s, u"a:1"_s}},
        {"a batch takes empty shards, not part-full ones", 8, {{u"a"_s, 1}, {u"e"_s, 0}, {u"f"_s, 0}}, {}, {},
         {u"e:4"_s, u"f:4"_s}},
        {"a chunk finishes the shard its batch began first", 3, {{u"open"_s, 2}, {u"e"_s, 0}, {u"b"_s, 1}},
         {u"open"_s}, {}, {u"open:2"_s, u"e:1"_s}},
        {"more than fits: the rest needs new shards", 6, {{u"e"_s, 0}, {u"full"_s, 4}}, {}, {}, {u"e:4"_s}},
        {"old top folders holding links take no new ones", 1, {{u"00"_s, 1}, {u"s"_s, 3}}, {}, {u"00"_s}, {u"s:1"_s}},
        {"nothing to place", 0, {{u"e"_s, 0}}, {}, {}, {}},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.what);
        const QStringList placed = LinkPlacement::place(test.count, test.sizes, test.beingFilled, test.excluded, kCapacity);
        // Empty shards are alike: the order they are taken in is not the rule.
        QStringList counted = tally(placed);
        QStringList expected = test.expected;
        if (test.beingFilled.isEmpty()) {
            counted.sort();
            expected.sort();
        }
        EXPECT_EQ(counted, expected);
        EXPECT_LE(placed.size(), test.count);
    }
}
