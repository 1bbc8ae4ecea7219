// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// Takes every message that waits in the calling thread's queue to its window. Nothing where the system has no
// such queues.
void dispatchWaitingMessages();

}  // namespace plumetta
