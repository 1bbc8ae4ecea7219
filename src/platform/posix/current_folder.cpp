// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/current_folder.h"

#include <unistd.h>

#include <atomic>
#include <filesystem>

namespace plumetta {
namespace {

// Null as long as nobody has left the folder in which the program was started.
std::atomic<const std::string*> leftFolder{nullptr};

std::string currentFolder() {
  std::error_code error;
  return std::filesystem::current_path(error).string();
}

}  // namespace

bool setCurrentFolder(const std::string& folder) {
  static const std::string start = currentFolder();
  leftFolder = &start;
  return chdir(folder.c_str()) == 0;
}

std::string startFolder() {
  const std::string* left = leftFolder;
  return left != nullptr ? *left : currentFolder();
}

bool leftStartFolder() { return leftFolder != nullptr; }

}  // namespace plumetta
