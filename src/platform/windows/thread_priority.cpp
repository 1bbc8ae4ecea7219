// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/thread_priority.h"

#include <windows.h>

namespace plumetta {

void raiseThreadPriority() noexcept { SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_ABOVE_NORMAL); }

void lowerThreadPriority() noexcept { SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_LOWEST); }

}  // namespace plumetta
