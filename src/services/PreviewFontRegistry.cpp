#include "PreviewFontRegistry.h"

#include <QFile>

bool PreviewFontRegistry::registerFont(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray data = file.readAll();
    if (data.isEmpty())
        return false;
    const QMutexLocker lock(&m_mutex);
    m_fonts.insert(path, data);
    return true;
}

void PreviewFontRegistry::unregisterFont(const QString &path)
{
    const QMutexLocker lock(&m_mutex);
    m_fonts.remove(path);
}

std::optional<QByteArray> PreviewFontRegistry::fontData(const QString &path) const
{
    const QMutexLocker lock(&m_mutex);
    const auto found = m_fonts.constFind(path);
    if (found == m_fonts.cend())
        return std::nullopt;
    return *found;
}

qsizetype PreviewFontRegistry::count() const
{
    const QMutexLocker lock(&m_mutex);
    return m_fonts.size();
}
