// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "formats/format.h"

namespace plumetta {

// Filters of file dialogs, read off the format table: "NAME (*.a, *.b)|*.a;*.A;*.b;*.B|..." each.

// "All known media files", each format that can be read, "All files".
std::string openFilter(const std::vector<Format>& formats);
// The formats that can be written.
std::string saveFilter(const std::vector<const Format*>& writable);
std::vector<const Format*> writableFormats(const std::vector<Format>& formats);
// The place of the format that a name's extension asks for; 0 when none does.
int filterIndexOf(const std::vector<const Format*>& writable, const std::string& path);

}  // namespace plumetta
