// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// Puts the calling thread one step above normal priority, where the system lets it.
void raiseThreadPriority() noexcept;
// Gives the calling thread the lowest priority there is: it works when nobody else wants to.
void lowerThreadPriority() noexcept;

}  // namespace plumetta
