// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// The one path of a file or folder, whatever names and links lead to it: absolute and without links. Of what
// isn't there yet, the part that is there is resolved. The path as it stands when the system can't tell.
std::string realPath(const std::string& path);

// Whether a real path is the folder of that real path or lies somewhere inside.
bool liesInFolder(const std::string& path, const std::string& folder);

// Equal for two names that mean the same file of a folder.
std::string fileNameKey(const std::string& name);

}  // namespace plumetta
