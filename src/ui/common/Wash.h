// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>

// A tint laid over the window's own colour, stronger on a light desktop than on a dark
// one: the message area's yellow, the save problem's red. Text on it keeps the palette's
// own colour, so it reads on both.
namespace Wash {

inline QColor over(const QPalette &palette, const QColor &lightTint, const QColor &darkTint, double lightShare,
                   double darkShare)
{
    const QColor window = palette.color(QPalette::Window);
    const bool dark = window.lightness() < 128;
    const QColor tint = dark ? darkTint : lightTint;
    const double share = dark ? darkShare : lightShare;
    return QColor::fromRgbF(window.redF() * (1 - share) + tint.redF() * share,
                            window.greenF() * (1 - share) + tint.greenF() * share,
                            window.blueF() * (1 - share) + tint.blueF() * share);
}

} // namespace Wash
