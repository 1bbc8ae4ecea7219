// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plumetta {

// Where people and installers put plug-ins on this system, the person's own folders first. They need not be
// there.
std::vector<std::string> usualPluginFolders();

// The extension of libraries on this system, without the dot.
extern const std::string_view kLibraryExtension;

// Whether a path names another machine: "\\host\share" or "//host/share", however it is written.
bool isNetworkPath(std::string_view path);

// Seconds since 1970 of the last change of a file; 0 when it can't be told.
long long fileTime(const std::string& path);

}  // namespace plumetta
