// SPDX-License-Identifier: GPL-3.0-or-later
#include "ActivationBatch.h"

#include <QCoroFuture>
#include <QPromise>

#include <atomic>
#include <condition_variable>
#include <mutex>

// How the wait for a job ends: the job's end (on its thread) and giveUp() (on ours) may
// race, and only the first counts.
struct BatchJobOutcome
{
    std::atomic_bool settled{false};
    QPromise<bool> finished; // true: the job ended; false: given up on
};

namespace {

void settle(BatchJobOutcome &outcome, bool finished)
{
    if (outcome.settled.exchange(true))
        return;
    outcome.finished.addResult(finished);
    outcome.finished.finish();
}

} // namespace

ActivationBatch::ActivationBatch() = default;

ActivationBatch::~ActivationBatch() = default;

QCoro::Task<std::optional<QStringList>> ActivationBatch::await(QFuture<QStringList> job)
{
    // A promise of our own per job rather than QtFuture::whenAny: that left a context
    // alive for every chunk of a batch (12,500 for 100,000 fonts).
    const auto outcome = std::make_shared<BatchJobOutcome>();
    outcome->finished.start();
    m_outcome = outcome;
    // Settled where the job ends; the continuation goes with the job.
    job.then(QtFuture::Launch::Sync, [outcome](const QFuture<QStringList> &) { settle(*outcome, true); });
    QFuture<bool> ended = outcome->finished.future();
    const bool finished = co_await ended;
    if (m_outcome == outcome)
        m_outcome.reset();
    if (!finished)
        co_return std::nullopt;
    co_return job.result();
}

bool ActivationBatch::giveUp()
{
    if (!m_outcome)
        return false;
    settle(*m_outcome, false);
    return true;
}

struct BackgroundJobs::Running
{
    std::mutex mutex;
    std::condition_variable ended;
    int count = 0;
};

BackgroundJobs::BackgroundJobs()
    : m_running(std::make_shared<Running>())
{
}

BackgroundJobs::Ticket BackgroundJobs::ticket()
{
    {
        const std::lock_guard lock(m_running->mutex);
        ++m_running->count;
    }
    // Given back when the job's last copy of it goes, on the job's thread.
    return Ticket(nullptr, [running = m_running](void *) {
        const std::lock_guard lock(running->mutex);
        --running->count;
        running->ended.notify_all();
    });
}

bool BackgroundJobs::waitForAll(int msecs)
{
    std::unique_lock lock(m_running->mutex);
    return m_running->ended.wait_for(lock, std::chrono::milliseconds(msecs), [this] { return m_running->count == 0; });
}

void BackgroundJobs::waitForAll()
{
    std::unique_lock lock(m_running->mutex);
    m_running->ended.wait(lock, [this] { return m_running->count == 0; });
}
