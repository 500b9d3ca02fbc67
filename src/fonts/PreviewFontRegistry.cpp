// SPDX-License-Identifier: GPL-3.0-or-later
#include "PreviewFontRegistry.h"

bool PreviewFontRegistry::registerFont(const QString &path)
{
    std::shared_ptr<const MappedFile> file = MappedFile::open(path);
    if (!file)
        return false;
    const QMutexLocker lock(&m_mutex);
    m_fonts.insert(path, std::move(file));
    return true;
}

void PreviewFontRegistry::unregisterFont(const QString &path)
{
    std::shared_ptr<const MappedFile> released; // unmapped once the lock is let go
    {
        const QMutexLocker lock(&m_mutex);
        released = m_fonts.take(path);
    }
}

std::shared_ptr<const MappedFile> PreviewFontRegistry::fontFile(const QString &path) const
{
    const QMutexLocker lock(&m_mutex);
    return m_fonts.value(path);
}

qsizetype PreviewFontRegistry::count() const
{
    const QMutexLocker lock(&m_mutex);
    return m_fonts.size();
}
