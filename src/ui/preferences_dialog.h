// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/settings.h"

class wxWindow;

namespace plumetta {

// The settings that people choose, page by page, read off their rows. False when they cancelled; nothing has
// changed then.
bool askPreferences(wxWindow* parent, Settings& settings);

}  // namespace plumetta
