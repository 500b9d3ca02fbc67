// SPDX-License-Identifier: GPL-3.0-or-later
#include "FreedMemory.h"
#include "model/SharedPaths.h"

#include <QThreadPool>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace FreedMemory {

void giveBack()
{
    SharedPaths::dropUnused();
#if defined(__GLIBC__)
    // Every arena, not only the main one: the jobs' threads have their own.
    malloc_trim(0);
#endif
}

void giveBackSoon()
{
    QThreadPool::globalInstance()->start(&giveBack, -1);
}

} // namespace FreedMemory
