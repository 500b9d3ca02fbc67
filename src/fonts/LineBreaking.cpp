// SPDX-License-Identifier: GPL-3.0-or-later
#include "LineBreaking.h"

#include <numeric>

namespace LineBreaking {

QList<std::pair<qsizetype, qsizetype>> breakLines(const QList<double> &widths, const QList<bool> &isSpace,
                                                  double maxWidth)
{
    const double total = std::accumulate(widths.cbegin(), widths.cend(), 0.0);
    QList<std::pair<qsizetype, qsizetype>> ranges; // cluster indices [first, last)
    if (maxWidth <= 0 || total <= maxWidth) {
        ranges.append({0, widths.size()});
    } else {
        qsizetype lineStart = 0;
        qsizetype lastBreak = -1;
        double width = 0;
        for (qsizetype i = 0; i < widths.size(); ++i) {
            const bool space = isSpace.at(i);
            if (!space && i > lineStart && width + widths.at(i) > maxWidth) {
                const qsizetype cut = lastBreak > lineStart ? lastBreak : i;
                ranges.append({lineStart, cut});
                lineStart = cut;
                width = std::accumulate(widths.cbegin() + cut, widths.cbegin() + i, 0.0);
                lastBreak = -1;
            }
            width += widths.at(i);
            if (space)
                lastBreak = i + 1;
        }
        ranges.append({lineStart, widths.size()});
    }
    return ranges;
}

} // namespace LineBreaking
