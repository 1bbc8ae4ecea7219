// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace plumetta {

// Makes `folder` the process's current one, as plug-ins want it that look for files of theirs. Paths that the
// person has given stay relative to the folder in which the program was started: absolutePath() sees to that.
// Any thread.
bool setCurrentFolder(const std::string& folder);

// What relative paths of the person are relative to. Any thread.
std::string startFolder();
// Whether that may be another folder than the current one. Any thread.
bool leftStartFolder();

}  // namespace plumetta
