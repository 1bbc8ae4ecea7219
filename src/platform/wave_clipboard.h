// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace plumetta {

// The bytes of the standard wave format on the system clipboard, where the operating system itself keeps one;
// nothing where a clipboard is a matter of the desktop's toolkit, or holds no wave. UI thread.
std::optional<std::string> systemWaveImage();

}  // namespace plumetta
