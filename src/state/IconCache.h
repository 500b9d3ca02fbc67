// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QImage>
#include <QSet>
#include <QString>

#include <functional>
#include <optional>

// Collections' own icons, one concern of the store: each file read once, bounded in
// size, and decoded by what the interface puts in place (which also draws SVG); an icon
// that can't be read is not tried again until the icons are forgotten.
class IconCache
{
public:
    using Decoder = std::function<QImage(const QByteArray &bytes, const QString &path)>;
    void setDecoder(Decoder decoder);
    bool hasDecoder() const { return bool(m_decoder); }
    std::optional<QImage> icon(const QString &path);
    void forget();

private:
    QHash<QString, QImage> m_images;
    QSet<QString> m_missing;
    Decoder m_decoder;
};
