// SPDX-License-Identifier: GPL-3.0-or-later
#include "SourceList.h"

#include "services/PersistenceService.h"

#include <QDir>

SourceList::SourceList(PersistenceService &persistence, QObject *parent)
    : QObject(parent)
    , m_persistence(persistence)
{
}

void SourceList::replace(QList<FolderSource> sources)
{
    if (m_sources == sources)
        return;
    m_sources = std::move(sources);
    Q_EMIT changed();
}

void SourceList::load()
{
    replace(m_persistence.loadSources());
}

std::optional<FolderSource> SourceList::add(const QString &path)
{
    const QString cleanPath = QDir::cleanPath(path);
    for (const FolderSource &source : std::as_const(m_sources)) {
        if (source.path == cleanPath)
            return std::nullopt;
    }
    const FolderSource source{QUuid::createUuid(), cleanPath, cleanPath == u"/" ? cleanPath : cleanPath.section(u'/', -1)};
    QList<FolderSource> sources = m_sources;
    sources.append(source);
    replace(std::move(sources));
    m_persistence.saveSources(m_sources);
    return source;
}

void SourceList::remove(const QUuid &id)
{
    QList<FolderSource> sources = m_sources;
    sources.removeIf([&id](const FolderSource &s) { return s.id == id; });
    replace(std::move(sources));
    m_persistence.saveSources(m_sources);
}
