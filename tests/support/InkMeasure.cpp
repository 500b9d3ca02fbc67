// SPDX-License-Identifier: GPL-3.0-or-later
#include "InkMeasure.h"

namespace InkMeasure {

bool isDark(QRgb pixel)
{
    return qGray(pixel) < 128;
}

qint64 mass(const QImage &image)
{
    qint64 total = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (isDark(pixel))
                total += 255 - qGray(pixel);
        }
    }
    return total;
}

QRect box(const QImage &image, const std::function<bool(QRgb)> &isInk)
{
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isInk(image.pixel(x, y)))
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

double share(const QImage &image, const QRect &box)
{
    if (box.isEmpty())
        return 0;
    int ink = 0;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x)
            ink += isDark(image.pixel(x, y));
    }
    return double(ink) / (box.width() * box.height());
}

} // namespace InkMeasure
