// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>

class QLocalServer;

// One Morvane per account. The running copy holds a lock file in the storage folder,
// so two stores never write the same files, and listens on a local socket; a second
// start finds the lock, hands the running copy the files it was given and the desktop's
// activation token, asks it to bring its window to the front, and exits. The lock of a copy that crashed or was killed is stale (its process is gone)
// and is taken over.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        Owner,       // this process runs Morvane
        HandedOver,  // another copy runs and showed its window
        NoAnswer,    // another copy holds the lock but did not answer
    };

    explicit SingleInstance(const QString &storageFolder, QObject *parent = nullptr);
    ~SingleInstance() override;

    // Takes the lock, or hands over to the copy that holds it (with `paths`, absolute).
    // Prints one line unless this process is the owner.
    Outcome start(const QStringList &paths = {});

Q_SIGNALS:
    // A second start asked for the window; `activationToken` is the desktop's (Wayland's
    // XDG_ACTIVATION_TOKEN or X11's DESKTOP_STARTUP_ID), empty when it gave none.
    void showRequested(const QString &activationToken);
    // A second start was given files or folders.
    void openRequested(const QStringList &paths);

private:
    // Asks a running copy to open `paths` and show its window, trying to connect for `patienceMs`.
    bool handOver(const QStringList &paths, int patienceMs);
    void listen();

    QString m_lockPath;
    QString m_socketPath;
    QLockFile m_lock;
    QLocalServer *m_server = nullptr;
};
