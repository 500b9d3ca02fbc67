// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <algorithm>

// What changed between two versions of a list a view shows: the rows between their
// common start and common end. A model removes and inserts just those, so the view
// keeps its scroll, its current row and its hover when a few rows come or go (a font
// copied into a folder, a folder renamed); a change of most rows is a reset.
namespace RowDiff {

struct Span
{
    qsizetype head = 0;     // rows kept at the start
    qsizetype removed = 0;  // old rows after them that go
    qsizetype inserted = 0; // new rows in their place
    // Worth a reset instead: most rows changed.
    bool isWholesale(qsizetype oldSize) const { return removed + inserted > std::max<qsizetype>(64, oldSize / 2); }
};

template <typename List, typename Same>
Span changed(const List &before, const List &after, Same same)
{
    const qsizetype shorter = std::min(before.size(), after.size());
    Span span;
    while (span.head < shorter && same(before.at(span.head), after.at(span.head)))
        ++span.head;
    qsizetype tail = 0;
    while (tail < shorter - span.head && same(before.at(before.size() - 1 - tail), after.at(after.size() - 1 - tail)))
        ++tail;
    span.removed = before.size() - span.head - tail;
    span.inserted = after.size() - span.head - tail;
    return span;
}

} // namespace RowDiff
