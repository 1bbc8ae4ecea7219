// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "net/net_address.h"

namespace plumetta {

// Before anything else of the library is used; any thread, any number of times.
void prepareCurl();

// The schemes that are wanted and that the library was built with, each followed by `separator`, the last one
// by `end` instead.
std::string listedSchemes(NetSchemes schemes, const std::string& separator, const std::string& end);
bool isAmong(NetSchemes schemes, const std::string& scheme);

}  // namespace plumetta
