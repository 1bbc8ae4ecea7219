// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "ui/window_profile.h"

class wxWindow;

namespace plumetta {

// Asks for the address of a file to be opened, proposing those of the last times. Nothing when the person
// cancelled.
std::optional<std::string> askAddress(wxWindow* parent, WindowProfile& profile);

}  // namespace plumetta
