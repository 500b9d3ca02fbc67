// SPDX-License-Identifier: GPL-3.0-or-later
#include "SourceWatcher.h"

#include <QSet>

SourceWatcher::SourceWatcher(QObject *parent)
    : QObject(parent)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(1000);
    connect(&m_quiet, &QTimer::timeout, this, &SourceWatcher::changed);
    // Each change starts the second again: the refresh comes after the burst.
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_quiet, qOverload<>(&QTimer::start));
}

bool SourceWatcher::watch(const QStringList &folders)
{
    // Past the limit (a test's), the folders left over go unwatched.
    const QStringList kept = m_limit >= 0 ? folders.mid(0, m_limit) : folders;
    qsizetype refused = folders.size() - kept.size();
    const QStringList current = m_watcher.directories();
    const QSet<QString> wanted(kept.cbegin(), kept.cend());
    QStringList gone;
    for (const QString &folder : current) {
        if (!wanted.contains(folder))
            gone.append(folder);
    }
    if (!gone.isEmpty())
        m_watcher.removePaths(gone);
    const QSet<QString> have(current.cbegin(), current.cend());
    QStringList added;
    for (const QString &folder : kept) {
        if (!have.contains(folder))
            added.append(folder);
    }
    if (!added.isEmpty())
        refused += m_watcher.addPaths(added).size(); // those the kernel would not watch
    return refused == 0;
}
