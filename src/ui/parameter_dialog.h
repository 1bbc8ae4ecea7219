// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "doc/command.h"
#include "ui/window_profile.h"

class wxWindow;

namespace plumetta {

// Asks for the parameters of a command in a dialog that is read off its row. The values of the last time
// stand in the fields, kept in the profile under the names of the row. Nothing when the person cancelled.
std::optional<Arguments> askParameters(wxWindow* parent, CPlumettaDoc& doc, const Command& command,
                                       WindowProfile& profile);

}  // namespace plumetta
