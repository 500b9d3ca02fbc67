// SPDX-License-Identifier: GPL-3.0-or-later
#include "IconCache.h"

#include "services/PersistenceService.h"
#include "services/RegularFile.h"

void IconCache::setDecoder(Decoder decoder)
{
    m_decoder = std::move(decoder);
    forget();
}

void IconCache::forget()
{
    m_images.clear();
    m_missing.clear();
}

std::optional<QImage> IconCache::icon(const QString &path)
{
    const auto cached = m_images.constFind(path);
    if (cached != m_images.cend())
        return *cached;
    if (m_missing.contains(path))
        return std::nullopt; // failed before: not retried until an icon is set again
    QImage image;
    // Only a regular file of an image's size: a pipe put in the icon's place would
    // block every start, a device would never end.
    const RegularFile::Contents bytes = RegularFile::read(path, PersistenceService::kMaxIconBytes);
    if (bytes.ok())
        image = m_decoder ? m_decoder(bytes.bytes, path) : QImage::fromData(bytes.bytes);
    if (image.isNull()) {
        m_missing.insert(path);
        return std::nullopt;
    }
    m_images.insert(path, image);
    return image;
}
