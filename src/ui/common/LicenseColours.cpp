// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/LicenseColours.h"

#include <QPainter>

namespace LicenseColours {

namespace {

QColor rgb(double red, double green, double blue)
{
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

// The desktop's standard named colours, as the system palettes of common desktops draw them.
const QColor kGreen(52, 199, 89);
const QColor kRed(255, 59, 48);
const QColor kYellow(255, 204, 0);
const QColor kPurple(175, 82, 222);
const QColor kOrange(255, 149, 0);
const QColor kGray(142, 142, 147);

} // namespace

QColor color(LicenseStatus status)
{
    switch (status) {
    case LicenseStatus::Licensed: return kGreen;
    case LicenseStatus::LicensedNonCommercial: return rgb(0.82, 0.71, 0.55);
    case LicenseStatus::Unlicensed: return kRed;
    case LicenseStatus::PartiallyLicensed: return kYellow;
    case LicenseStatus::PublicDomain: return kPurple;
    case LicenseStatus::OpenSource: return rgb(0.2, 0.5, 1.0);
    case LicenseStatus::Trial: return kOrange;
    case LicenseStatus::None: break;
    }
    return kGray;
}

QColor selectedColor(LicenseStatus status)
{
    switch (status) {
    case LicenseStatus::Licensed: return rgb(0.5, 1.0, 0.5);
    case LicenseStatus::LicensedNonCommercial: return rgb(0.92, 0.81, 0.65);
    case LicenseStatus::Unlicensed: return rgb(1.0, 0.5, 0.5);
    case LicenseStatus::PartiallyLicensed: return rgb(1.0, 1.0, 0.5);
    case LicenseStatus::PublicDomain: return rgb(0.8, 0.6, 1.0);
    case LicenseStatus::OpenSource: return rgb(0.5, 0.75, 1.0);
    case LicenseStatus::Trial: return rgb(1.0, 0.75, 0.4);
    case LicenseStatus::None: break;
    }
    return Qt::white;
}

QImage menuDotImage(LicenseStatus status, qreal devicePixelRatio)
{
    const int side = qRound(12 * devicePixelRatio);
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color(status));
        painter.drawEllipse(QRectF(0, 0, side, side));
    }
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

} // namespace LicenseColours
