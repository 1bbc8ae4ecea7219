// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/plugin_folders.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

#include "platform/paths.h"

namespace plumetta {

const std::string_view kLibraryExtension = "so";

std::vector<std::string> usualPluginFolders() {
  std::vector<std::string> folders;
  const char* named = std::getenv("VST_PATH");
  std::string_view rest = named != nullptr ? named : "";
  while (!rest.empty()) {
    const size_t end = std::min(rest.find(':'), rest.size());
    if (rest.front() == '/') folders.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  folders.push_back(joinPath(personalFolder(), ".vst"));
  folders.emplace_back("/usr/local/lib/vst");
  folders.emplace_back("/usr/lib/vst");
  return folders;
}

long long fileTime(const std::string& path) {
  struct stat facts {};
  return stat(path.c_str(), &facts) == 0 ? static_cast<long long>(facts.st_mtime) : 0;
}

}  // namespace plumetta
