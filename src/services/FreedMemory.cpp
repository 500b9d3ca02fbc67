// SPDX-License-Identifier: GPL-3.0-or-later
#include "FreedMemory.h"
#include "model/SharedPaths.h"

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

} // namespace FreedMemory
