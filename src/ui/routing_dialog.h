// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/setting_groups.h"

class wxWindow;

namespace plumetta {

// Which channel of a document, or silence, is heard on each of the sixteen outputs; `deviceOutputs` of them
// the chosen device has. False when the person cancelled; nothing has changed then.
bool askRouting(wxWindow* parent, PlaybackSettings& settings, int deviceOutputs);

}  // namespace plumetta
