// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRect>

#include <functional>

// Properties of drawn text, for checking pixels without stored images: where the ink
// lies and how much of it there is. Ink is whatever is darker than mid-grey.
namespace InkMeasure {

bool isDark(QRgb pixel);
// The sum of the darkness of every inked pixel.
qint64 mass(const QImage &image);
// The smallest rectangle holding every pixel the predicate calls ink.
QRect box(const QImage &image, const std::function<bool(QRgb)> &isInk = isDark);
// The share of the rectangle's pixels that are ink.
double share(const QImage &image, const QRect &box);

} // namespace InkMeasure
