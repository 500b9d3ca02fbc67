// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/CollectionIcons.h"

#include <QPainter>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace CollectionIcons {

QImage decode(const QByteArray &bytes, const QString &path)
{
    if (!path.endsWith(u".svg"_s, Qt::CaseInsensitive))
        return QImage::fromData(bytes);
    QSvgRenderer renderer(bytes);
    if (!renderer.isValid())
        return {};
    QImage image(128, 128, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

} // namespace CollectionIcons
