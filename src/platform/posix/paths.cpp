// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/paths.h"

#include <cstdlib>
#include <filesystem>

#include "platform/current_folder.h"

namespace plumetta {

bool isPathSeparator(char c) { return c == '/'; }

std::string executableFolder() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string(".") : folderOf(self.string());
}

std::string personalFolder() {
  const char* home = std::getenv("HOME");
  return home != nullptr && home[0] == '/' ? home : "/";
}

std::string userConfigFolder() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config != nullptr && config[0] == '/') return joinPath(config, "plumetta");
  return joinPath(joinPath(personalFolder(), ".config"), "plumetta");
}

std::string absolutePath(const std::string& path) {
  return path.empty() ? path : (std::filesystem::path(startFolder()) / path).string();
}

}  // namespace plumetta
