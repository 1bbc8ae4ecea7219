// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/application.h"

class wxWindow;

namespace plumetta {

// The devices of output and input, their rates, bits and buffers. The lists of devices are those of the
// moment at which it opens. False when the person cancelled; nothing has changed then. True leaves it to the
// caller to store the settings.
bool askAudioConfiguration(wxWindow* parent, Application& app);

}  // namespace plumetta
