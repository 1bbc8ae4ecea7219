// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "app/application.h"

namespace plumetta {

// At start: tells which plug-in has taken the program down, and opens the copies of changed documents that
// were left behind, if the person wants them. Those that are not wanted stay where they are, and nobody is
// asked again.
std::vector<CPlumettaDoc*> offerRecovery(Application& app);

}  // namespace plumetta
