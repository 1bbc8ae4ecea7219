// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "app/skin.h"
#include "platform/file_system.h"

namespace plumetta {

inline constexpr const char* kSkinExtension = "skin";

// "plumetta.skin" in the program's own folder: the colours that the person has made.
std::string ownSkinPath(const std::string& home);
// The file whose colours hold: the one that the settings name where there is such a file, else the person's
// own; empty when there is neither.
std::string chosenSkinPath(FileSystem& files, const std::string& home, const std::string& setting);

struct SkinFile {
  std::string name;  // as a menu shows it
  std::string path;
};
// Those of the program's own folder, but for the person's own colours, and those that come with the program,
// by name; of two with one name the first.
std::vector<SkinFile> skinFiles(FileSystem& files, const std::string& home);

}  // namespace plumetta
