// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A scan or a restore of 100,000 fonts builds large passing lists on several threads;
// glibc keeps what they freed for later, and the window would carry it for the rest of
// its life. Called when such a job ends, this lets go of shared paths nobody holds and
// hands freed memory back to the system.
namespace FreedMemory {

// On the calling thread: a job's own thread as it ends.
void giveBack();
// On a thread of its own, so the window never waits for it.
void giveBackSoon();

} // namespace FreedMemory
