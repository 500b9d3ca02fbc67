// SPDX-License-Identifier: GPL-3.0-or-later
#include "SaveStatus.h"

#include "services/PersistenceService.h"

namespace {

constexpr int kRetryMs = 3000;

} // namespace

SaveStatus::SaveStatus(PersistenceService &persistence, QObject *parent)
    : QObject(parent)
    , m_persistence(persistence)
{
    m_retry.setInterval(kRetryMs);
    connect(&m_retry, &QTimer::timeout, this, [this] { m_persistence.retryFailedSaves(); });
    // The writer reports from its own thread; the result is applied on ours.
    m_persistence.setSaveObserver([this](const QString &fileName, const QString &failure) {
        QMetaObject::invokeMethod(this, [this, fileName, failure] { record(fileName, failure); }, Qt::QueuedConnection);
    });
}

SaveStatus::~SaveStatus()
{
    m_persistence.setSaveObserver(nullptr);
}

void SaveStatus::record(const QString &fileName, const QString &failure)
{
    if (failure.isEmpty())
        m_failures.remove(fileName);
    else
        m_failures.insert(fileName, failure);
    const QString shown = m_failures.isEmpty() ? QString() : m_failures.first();
    if (shown.isEmpty())
        m_retry.stop();
    else if (!m_retry.isActive())
        m_retry.start();
    if (m_failure == shown)
        return;
    m_failure = shown;
    Q_EMIT failureChanged();
}
