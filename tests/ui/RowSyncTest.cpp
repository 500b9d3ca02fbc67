// SPDX-License-Identifier: GPL-3.0-or-later
// The steps between two lists of rows, replayed as a view would see them: each table
// row must end at the wanted list, and take no step a smaller change wouldn't need.
#include "ui/common/RowSync.h"

#include <gtest/gtest.h>

#include <QString>

namespace {

QString replay(QString shown, const QList<RowSync::Step> &steps, const QString &wanted)
{
    for (const RowSync::Step &step : steps) {
        switch (step.kind) {
        case RowSync::Step::Remove: shown.remove(step.row, 1); break;
        case RowSync::Step::Move: {
            EXPECT_LT(step.to, step.row) << "rows only move up";
            const QChar moved = shown.at(step.row);
            shown.remove(step.row, 1);
            shown.insert(step.to, moved);
            break;
        }
        case RowSync::Step::Insert: shown.insert(step.row, wanted.at(step.row)); break;
        }
    }
    return shown;
}

QList<QChar> keys(const QString &text) { return QList<QChar>(text.begin(), text.end()); }

} // namespace

TEST(RowSync, StepsLeadFromTheShownRowsToTheWantedOnes)
{
    const struct
    {
        const char *shown;
        const char *wanted;
        int steps; // the fewest this change needs
    } cases[] = {
        {"", "", 0},       {"abc", "abc", 0},  {"", "ab", 2},     {"abc", "", 3},
        {"abc", "abxc", 1}, // one added in the middle: the others stay
        {"abc", "ac", 1},   // one deleted
        {"abc", "xbc", 2},  // one replaced: out, in
        {"abcd", "dabc", 1}, // the last to the top is one move
        {"abcd", "bcda", 3}, // the first to the bottom moves the others up
        {"abcd", "xdcbe", 5},
    };
    for (const auto &c : cases) {
        const QString shown = QString::fromLatin1(c.shown);
        const QString wanted = QString::fromLatin1(c.wanted);
        const QList<RowSync::Step> steps = RowSync::steps(keys(shown), keys(wanted));
        EXPECT_EQ(replay(shown, steps, wanted), wanted) << c.shown << " → " << c.wanted;
        EXPECT_EQ(steps.size(), c.steps) << c.shown << " → " << c.wanted;
    }
}
