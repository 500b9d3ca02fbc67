// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/resource.h>
#include <unistd.h>

// Background work (reading the catalogue) yields to everything the user waits for,
// but still moves on a busy machine: the calling thread's nice value is raised once.
// Never SCHED_IDLE (QThread::IdlePriority), which runs nothing while the cores are busy.
namespace BackgroundPriority {

// 4: beside two busy processes on two cores the readers still get about a third of
// each (10 gave them a tenth: a first index took seven times as long). A window's
// thread, asleep most of the time, is still woken ahead of them.
inline constexpr int kNice = 4;

inline void lowerThisThread()
{
    thread_local bool lowered = false;
    if (lowered)
        return;
    lowered = true;
    // On Linux the nice value is each thread's own; the thread's id names it.
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kNice);
}

} // namespace BackgroundPriority
