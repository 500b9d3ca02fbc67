// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

// One background thread that writes Morvane's files in turn, so the interface never
// waits for a disk. Each file has at most one queued state: a newer save replaces one
// not yet started. A state whose write fails is kept and written again with the next
// save of any file, when asked, and when the queue stops (at quit).
class SaveQueue
{
public:
    // Writes one file's state; the error's description on failure.
    using Write = std::function<std::optional<QString>()>;
    // Told after every write, on the writer thread: the file's name, and the error's
    // description, or an empty text when the write succeeded.
    using Observer = std::function<void(const QString &fileName, const QString &failure)>;

    SaveQueue();
    ~SaveQueue(); // writes everything still queued, failed states once more, then stops
    SaveQueue(const SaveQueue &) = delete;
    SaveQueue &operator=(const SaveQueue &) = delete;

    // `failureMessage` starts the line printed when the write fails ("Failed to save
    // sources: "). A `pause` lets a burst of saves (a slider dragged) cost one write.
    void queue(const QString &fileName, Write write, const QString &failureMessage,
               std::chrono::milliseconds pause = std::chrono::milliseconds(0));
    void retryFailed();
    // Why some file's latest state is still not on disk; empty when everything is.
    QString unsavedFailure();
    // Until everything queued is written, pauses cut short.
    void waitUntilWritten();
    void setObserver(Observer observer);

private:
    using Clock = std::chrono::steady_clock;
    struct Job
    {
        Write write;
        QString failureMessage;
        QString lastError; // a retry that fails alike prints nothing
        Clock::time_point due;
    };

    void run();
    bool write(const QString &fileName, Job &job);
    void requeueFailed();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::map<QString, Job> m_pending;
    std::map<QString, Job> m_failed; // file name -> the latest state, not written yet
    bool m_busy = false;
    bool m_stopping = false;
    int m_flushing = 0; // callers waiting for everything: pauses don't count
    std::mutex m_observerMutex;
    Observer m_observer;
    std::thread m_thread; // last: started once everything above exists
};
