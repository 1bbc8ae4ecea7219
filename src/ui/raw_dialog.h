// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "formats/format.h"
#include "ui/window_profile.h"

class wxWindow;

namespace plumetta {

// Asks how the samples stand in a file without a header, with a picture of what comes out of it; `name` is
// what it is called. The values are those of the last time. Nothing when the person cancelled, or when the
// file can't be read (a message has said so).
std::optional<RawLayout> askRawLayout(wxWindow* parent, Application& app, const std::string& path,
                                      const std::string& name, WindowProfile& profile);

}  // namespace plumetta
