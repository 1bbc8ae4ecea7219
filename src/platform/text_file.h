// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace plumetta {

// How a line of a text file ends on this system.
extern const std::string_view kTextLineEnd;

}  // namespace plumetta
