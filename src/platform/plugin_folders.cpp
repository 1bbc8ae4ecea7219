// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/plugin_folders.h"

#include "platform/paths.h"

namespace plumetta {
namespace {

bool isEitherSeparator(char c) { return c == '/' || c == '\\'; }

}  // namespace

bool isBelow(const std::string& path, const std::string& folder) {
  if (folder.empty()) return false;
  const std::string file = pathIdentity(path);
  const std::string start = pathIdentity(folder);
  return file.size() > start.size() && file.starts_with(start) &&
         (isPathSeparator(start.back()) || isPathSeparator(file[start.size()]));
}

bool isNetworkPath(std::string_view path) {
  if (path.size() < 2 || !isEitherSeparator(path[0]) || !isEitherSeparator(path[1])) return false;
  // "\\?\C:\..." is a drive of this machine.
  const bool drive = path.size() > 5 && path[2] == '?' && isEitherSeparator(path[3]) && path[5] == ':';
  return !drive;
}

}  // namespace plumetta
