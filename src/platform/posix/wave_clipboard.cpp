// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/wave_clipboard.h"

namespace plumetta {

std::optional<std::string> systemWaveImage() { return std::nullopt; }

}  // namespace plumetta
