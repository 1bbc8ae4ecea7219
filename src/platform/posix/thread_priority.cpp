// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/thread_priority.h"

#include <sys/resource.h>

namespace plumetta {

// On Linux, the niceness of "this process" is that of the calling thread alone. Without the right to lower it
// the thread stays as it is.
void raiseThreadPriority() noexcept { setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, 0) - 1); }

void lowerThreadPriority() noexcept {
  constexpr int kLeastFavourable = 19;
  setpriority(PRIO_PROCESS, 0, kLeastFavourable);
}

}  // namespace plumetta
