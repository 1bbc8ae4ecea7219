// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace plumetta {

// Text of a plug-in as UTF-8: what isn't that already is taken for Latin-1. At most the first `mostBytes` of
// what the plug-in has written count, and no character is cut in two.
std::string plainText(std::string_view raw, size_t mostBytes);

}  // namespace plumetta
