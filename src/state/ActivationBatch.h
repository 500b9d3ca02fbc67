// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>

#include <QFuture>
#include <QList>
#include <QStringList>

#include <memory>
#include <optional>

struct BatchJobOutcome;

// One batch of activations or deactivations while it runs: the wait for its job in
// flight and the user's request to stop (what went wrong is its BatchResult). Each batch
// has its own, so a batch's wait can never be settled or stopped by another.
class ActivationBatch
{
public:
    ActivationBatch();
    ~ActivationBatch();
    ActivationBatch(const ActivationBatch &) = delete;
    ActivationBatch &operator=(const ActivationBatch &) = delete;

    // The job's result, or nothing once the wait was given up on (the job may still
    // end, unheard).
    QCoro::Task<std::optional<QStringList>> await(QFuture<QStringList> job);
    // Ends the wait in hand as given up on; false when nothing is waited for.
    bool giveUp();

    // Asked to stop after the chunk in flight: a chunk half done would leave fontconfig behind.
    void requestStop() { m_stopRequested = true; }
    bool stopRequested() const { return m_stopRequested; }

private:
    std::shared_ptr<BatchJobOutcome> m_outcome; // the job in flight ended, or was given up on
    bool m_stopRequested = false;
};

// What a batch leaves its caller: the fonts the system, not the font, kept from being
// done (our font folder can't be written), and those a stopped batch never reached.
struct BatchResult
{
    QStringList systemFailures;
    QStringList untouched;
};

// Every background job the store started that may still hold one of its services: the
// store waits for all of them, not only the newest, before it goes away. A job holds a
// ticket for as long as it runs.
class BackgroundJobs
{
public:
    BackgroundJobs();
    using Ticket = std::shared_ptr<void>;
    Ticket ticket();
    // Blocks (no event loop, no spinning) up to `msecs` for every job holding a ticket;
    // false when one still runs (stuck in the kernel).
    bool waitForAll(int msecs);
    void waitForAll();

private:
    struct Running;
    std::shared_ptr<Running> m_running;
};
