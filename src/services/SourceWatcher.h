// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

// Watches the source folders (inotify, one watch a folder) and says so once a second
// has passed without further changes: files copied in come in bursts, and one refresh
// should follow the burst. The system limits how many folders one user may watch; past
// it, the folders left over are not watched (and a network share reports no remote
// change at all): Refresh Sources still finds what they hold.
class SourceWatcher : public QObject
{
    Q_OBJECT

public:
    explicit SourceWatcher(QObject *parent = nullptr);

    // From now on, exactly these folders. False when some could not be watched.
    bool watch(const QStringList &folders);
    QStringList watched() const { return m_watcher.directories(); }
    void setQuietTime(int msecs) { m_quiet.setInterval(msecs); }
    // Stands in for the system's limit in tests: a test may not lower the real one.
    void setWatchLimitForTesting(qsizetype limit) { m_limit = limit; }

Q_SIGNALS:
    // Something was added, removed or renamed in a watched folder, and a quiet second followed.
    void changed();

private:
    QFileSystemWatcher m_watcher;
    QTimer m_quiet;
    qsizetype m_limit = -1;
};
