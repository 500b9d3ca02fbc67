// SPDX-License-Identifier: GPL-3.0-or-later
#include "SourceWatcher.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <sys/stat.h>

SourceWatcher::SourceWatcher(QObject *parent)
    : QObject(parent)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(1000);
    connect(&m_quiet, &QTimer::timeout, this, &SourceWatcher::changed);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &SourceWatcher::folderEvent);
    connect(&m_parents, &QFileSystemWatcher::directoryChanged, this, &SourceWatcher::parentEvent);
}

SourceWatcher::Look SourceWatcher::lookAt(const QString &folder)
{
    struct stat info{};
    if (::stat(QFile::encodeName(folder).constData(), &info) != 0 || !S_ISDIR(info.st_mode))
        return {};
    return {true, static_cast<quint64>(info.st_dev), static_cast<quint64>(info.st_ino),
            qint64(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec};
}

void SourceWatcher::folderEvent(const QString &folder)
{
    // Adding, removing or renaming an entry moves the folder's own time; an attribute of
    // an entry does not. A folder gone or replaced is a change too.
    const Look now = lookAt(folder);
    const auto before = m_looks.find(folder);
    if (before != m_looks.end() && *before == now) {
        Q_EMIT passedOver(folder);
        return;
    }
    m_looks.insert(folder, now);
    m_quiet.start(); // each change starts the second again: the refresh comes after the burst
}

void SourceWatcher::parentEvent(const QString &parent)
{
    bool moved = false;
    for (const QString &source : m_sourcesIn.value(parent)) {
        const Look now = lookAt(source);
        const Look before = m_looks.value(source);
        if (now.exists != before.exists || now.device != before.device || now.inode != before.inode) {
            m_looks.insert(source, now);
            moved = true;
        }
    }
    if (moved)
        m_quiet.start();
}

bool SourceWatcher::watch(const QStringList &folders, const QStringList &sources)
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
    for (const QString &folder : std::as_const(gone))
        m_looks.remove(folder);
    const QSet<QString> have(current.cbegin(), current.cend());
    QStringList added;
    for (const QString &folder : kept) {
        if (!have.contains(folder))
            added.append(folder);
    }
    // Looked at before they are watched: an event from now on compares with this.
    for (const QString &folder : std::as_const(added))
        m_looks.insert(folder, lookAt(folder));
    if (!added.isEmpty())
        refused += m_watcher.addPaths(added).size(); // those the kernel would not watch

    m_sourcesIn.clear();
    for (const QString &source : sources) {
        const QString parent = QFileInfo(source).path();
        if (parent.isEmpty() || parent == source)
            continue;
        m_sourcesIn[parent].append(source);
        if (!m_looks.contains(source))
            m_looks.insert(source, lookAt(source));
    }
    const QStringList parents = m_parents.directories();
    QStringList oldParents;
    for (const QString &parent : parents) {
        if (!m_sourcesIn.contains(parent))
            oldParents.append(parent);
    }
    if (!oldParents.isEmpty())
        m_parents.removePaths(oldParents);
    QStringList newParents;
    for (auto it = m_sourcesIn.cbegin(); it != m_sourcesIn.cend(); ++it) {
        if (!parents.contains(it.key()))
            newParents.append(it.key());
    }
    if (!newParents.isEmpty())
        m_parents.addPaths(newParents); // best effort: a parent we may not read tells nothing
    return refused == 0;
}
