// SPDX-License-Identifier: GPL-3.0-or-later
// Line breaking on cluster widths alone: no font, no shaping.
#include "TestSupport.h"

#include "fonts/LineBreaking.h"

using Ranges = QList<std::pair<qsizetype, qsizetype>>;

namespace {

// "ab cd" as clusters of width 1, spaces marked.
std::pair<QList<double>, QList<bool>> clusters(const char *text)
{
    QList<double> widths;
    QList<bool> spaces;
    for (const char *c = text; *c; ++c) {
        widths.append(1);
        spaces.append(*c == ' ');
    }
    return {widths, spaces};
}

} // namespace

TEST(LineBreaking, BreaksAfterSpacesAndCutsWordsTooLongForALine)
{
    struct Case
    {
        const char *text;
        double maxWidth;
        Ranges expected;
    };
    const QList<Case> cases{
        {"ab cd", 0, {{0, 5}}},                          // no width: one line
        {"ab cd", 5, {{0, 5}}},                          // fits exactly
        {"ab cd", 4, {{0, 3}, {3, 5}}},                  // after the space, which stays on its line
        {"ab cd ef", 5, {{0, 6}, {6, 8}}},               // as many words as fit
        {"abcdefg", 3, {{0, 3}, {3, 6}, {6, 7}}},        // one long word, cut where it overflows
        {"ab   cd", 3, {{0, 5}, {5, 7}}},                // a run of spaces never starts a line
        {"a bcdefgh", 4, {{0, 2}, {2, 6}, {6, 9}}},      // a long word after a short one
        {"", 10, {{0, 0}}},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.text);
        const auto [widths, spaces] = clusters(test.text);
        EXPECT_EQ(LineBreaking::breakLines(widths, spaces, test.maxWidth), test.expected);
    }
}
