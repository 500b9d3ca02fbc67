// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

#include <utility>

// Where a shaped paragraph breaks into lines, from its clusters alone (no font): greedy,
// after spaces; a word wider than a line is cut where it overflows. Trailing spaces stay
// on their line (the caller gives them no room).
namespace LineBreaking {

// `widths` and `isSpace` are per cluster, in reading order. Returns each line's clusters
// as [first, last). A `maxWidth` of 0 or less, or text that fits, gives one line.
QList<std::pair<qsizetype, qsizetype>> breakLines(const QList<double> &widths, const QList<bool> &isSpace,
                                                  double maxWidth);

} // namespace LineBreaking
