// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QStringList>
#include <QTimer>

// Watches the source folders (inotify, one watch a folder) and says so once a second
// has passed without further changes: files copied in come in bursts, and one refresh
// should follow the burst. The system limits how many folders one user may watch; past
// it, the folders left over are not watched (and a network share reports no remote
// change at all): Refresh Sources still finds what they hold.
//
// Only a change of what a folder holds counts: inotify also reports attribute changes
// of the files inside (our own licence tags, anyone's `touch -a` or chmod), which leave
// the folder's own modification time alone and are passed over. The source folders
// themselves are watched from their parents as well, so one renamed or removed while
// Morvane runs is noticed (a folder's own watch does not report its rename).
class SourceWatcher : public QObject
{
    Q_OBJECT

public:
    explicit SourceWatcher(QObject *parent = nullptr);

    // From now on, exactly these folders, and these source folders (among them) from
    // their parents. False when some folder could not be watched.
    bool watch(const QStringList &folders, const QStringList &sources = {});
    QStringList watched() const { return m_watcher.directories(); }
    void setQuietTime(int msecs) { m_quiet.setInterval(msecs); }
    // Stands in for the system's limit in tests: a test may not lower the real one.
    void setWatchLimitForTesting(qsizetype limit) { m_limit = limit; }

    // What a folder was when last looked at: there or not, which folder, and when what
    // it holds last changed.
    struct Look
    {
        bool exists = false;
        quint64 device = 0;
        quint64 inode = 0;
        qint64 modifiedNs = 0;
        bool operator==(const Look &) const = default;
    };
    static Look lookAt(const QString &folder);

Q_SIGNALS:
    // Something was added, removed or renamed in a watched folder, and a quiet second followed.
    void changed();
    // A folder's event that changed nothing it holds (an attribute of a file inside).
    void passedOver(const QString &folder);

private:
    void folderEvent(const QString &folder);
    void parentEvent(const QString &parent);

    QFileSystemWatcher m_watcher;
    QFileSystemWatcher m_parents; // the source folders' parents
    QHash<QString, Look> m_looks; // every watched folder and source folder
    QHash<QString, QStringList> m_sourcesIn; // parent -> the source folders in it
    QTimer m_quiet;
    qsizetype m_limit = -1;
};
