// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/LicenseStatus.h"

#include <QColor>
#include <QImage>

// How a licence status looks: the colour of its folders and dots, the lighter one on
// the accent colour of a selected row, and the dot menus show beside it.
namespace LicenseColours {

QColor color(LicenseStatus status);
QColor selectedColor(LicenseStatus status);
// A filled circle in the status colour, 12 × 12 points, for menus.
QImage menuDotImage(LicenseStatus status, qreal devicePixelRatio = 1.0);

} // namespace LicenseColours
