// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "app/application.h"

namespace plumetta {

// At start: tells which plug-in has taken the program down, opens the copies of changed documents that were
// left behind, and puts the chain that was left behind into the rack, but for what has crashed, as far as the
// person wants them. What is not wanted stays in the program's own folder, and nobody is asked again.
std::vector<CPlumettaDoc*> offerRecovery(Application& app);

}  // namespace plumetta
