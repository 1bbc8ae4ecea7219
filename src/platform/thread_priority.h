// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// Puts the calling thread one step above normal priority, where the system lets it.
void raiseThreadPriority() noexcept;

}  // namespace plumetta
