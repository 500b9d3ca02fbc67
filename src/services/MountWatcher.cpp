// SPDX-License-Identifier: GPL-3.0-or-later
#include "MountWatcher.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

MountWatcher::MountWatcher(QObject *parent)
    : QObject(parent)
{
    m_fd = ::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
    if (m_fd < 0)
        return; // no /proc: sources come back at the next refresh
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Exception, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        // The flag stays raised until the file is read again from its start.
        char buffer[4096];
        ::lseek(m_fd, 0, SEEK_SET);
        while (::read(m_fd, buffer, sizeof buffer) > 0) {
        }
        Q_EMIT mountsChanged();
    });
}

MountWatcher::~MountWatcher()
{
    delete m_notifier;
    if (m_fd >= 0)
        ::close(m_fd);
}
