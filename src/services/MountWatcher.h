// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QSocketNotifier;

// Tells when a file system is mounted or unmounted anywhere (a USB drive plugged in, a
// network share connected), so sources on it can come back without a manual refresh.
// The kernel flags /proc/self/mountinfo as changed for poll(); nothing is read until then.
class MountWatcher : public QObject
{
    Q_OBJECT

public:
    explicit MountWatcher(QObject *parent = nullptr);
    ~MountWatcher() override;

Q_SIGNALS:
    void mountsChanged();

private:
    int m_fd = -1;
    QSocketNotifier *m_notifier = nullptr;
};
