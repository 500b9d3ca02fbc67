// SPDX-License-Identifier: GPL-3.0-or-later
#include "SaveQueue.h"

#include "Console.h"

SaveQueue::SaveQueue()
    : m_thread([this] { run(); })
{
}

SaveQueue::~SaveQueue()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        requeueFailed(); // one last try at quitting: the space may be back
    }
    m_wake.notify_all();
    m_thread.join(); // writes whatever is still queued first
}

void SaveQueue::queue(const QString &fileName, Write write, const QString &failureMessage,
                      std::chrono::milliseconds pause)
{
    {
        const std::lock_guard lock(m_mutex);
        QString lastError;
        if (const auto failed = m_failed.find(fileName); failed != m_failed.end()) {
            lastError = failed->second.lastError;
            m_failed.erase(failed); // this newer state replaces the one that failed
        }
        m_pending.insert_or_assign(fileName, Job{std::move(write), failureMessage, lastError, Clock::now() + pause});
        // Anything changed: the space may be back, so what failed before goes again.
        requeueFailed();
    }
    m_wake.notify_all();
}

void SaveQueue::retryFailed()
{
    {
        const std::lock_guard lock(m_mutex);
        requeueFailed();
    }
    m_wake.notify_all();
}

QString SaveQueue::unsavedFailure()
{
    const std::lock_guard lock(m_mutex);
    return m_failed.empty() ? QString() : m_failed.begin()->second.lastError;
}

void SaveQueue::waitUntilWritten()
{
    std::unique_lock lock(m_mutex);
    ++m_flushing;
    m_wake.notify_all();
    m_idle.wait(lock, [this] { return m_pending.empty() && !m_busy; });
    --m_flushing;
}

void SaveQueue::setObserver(Observer observer)
{
    const std::lock_guard lock(m_observerMutex); // no call is under way once this returns
    m_observer = std::move(observer);
}

void SaveQueue::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stopping || !m_pending.empty(); });
        if (m_pending.empty())
            return; // stopping, and everything is written
        auto next = m_pending.begin();
        for (auto it = m_pending.begin(); it != m_pending.end(); ++it) {
            if (it->second.due < next->second.due)
                next = it;
        }
        if (!m_stopping && m_flushing == 0 && next->second.due > Clock::now()) {
            m_wake.wait_until(lock, next->second.due); // a newer save or a flush wakes it early
            continue;
        }
        const QString fileName = next->first;
        Job job = std::move(next->second);
        m_pending.erase(next);
        m_busy = true;
        const bool lastTry = m_stopping;
        lock.unlock();
        const bool written = write(fileName, job);
        if (written)
            job = {}; // the saved state is released here, not under the lock
        lock.lock();
        // A failed state is kept until it is written or replaced: quitting or a later
        // change must not lose it.
        if (!written && m_pending.find(fileName) == m_pending.end()) {
            // Begun before quitting was asked for: it missed the last try that quitting
            // gives every failed state (the space may be back by now), so it gets it here.
            if (m_stopping && !lastTry) {
                job.due = Clock::now();
                m_pending.insert_or_assign(fileName, std::move(job));
            } else {
                m_failed.insert_or_assign(fileName, std::move(job));
            }
        }
        m_busy = false;
        if (m_pending.empty())
            m_idle.notify_all();
    }
}

bool SaveQueue::write(const QString &fileName, Job &job)
{
    const std::optional<QString> error = job.write();
    if (error && *error != job.lastError)
        Console::printLine(job.failureMessage + *error);
    job.lastError = error.value_or(QString());
    const std::lock_guard lock(m_observerMutex);
    if (m_observer)
        m_observer(fileName, error.value_or(QString()));
    return !error;
}

void SaveQueue::requeueFailed()
{
    for (auto &[name, job] : m_failed) {
        if (m_pending.find(name) == m_pending.end()) {
            job.due = Clock::now();
            m_pending.insert_or_assign(name, std::move(job));
        }
    }
    m_failed.clear();
}
