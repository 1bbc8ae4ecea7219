// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace plumetta {

// Whether a text is a layout of panes as wxAuiManager writes it, with these names and no others and numbers
// that a window can have. The toolkit itself takes a damaged one for a fault of the program.
bool isDockLayout(const std::string& text, const std::vector<std::string>& names);

}  // namespace plumetta
