// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// Collection icons as the interface draws them: an SVG rendered at 128 x 128, any other
// image as Qt reads it. The store's icon memo keeps the result.
namespace CollectionIcons {

QImage decode(const QByteArray &bytes, const QString &path);

} // namespace CollectionIcons
