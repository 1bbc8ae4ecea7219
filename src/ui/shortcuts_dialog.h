// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "ui/action_menus.h"

namespace plumetta {

// Shows every action that has a key, menu by menu.
void showShortcuts(wxWindow* parent, const std::vector<MenuPlan>& plan);

}  // namespace plumetta
