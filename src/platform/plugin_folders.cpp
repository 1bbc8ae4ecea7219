// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/plugin_folders.h"

namespace plumetta {
namespace {

bool isEitherSeparator(char c) { return c == '/' || c == '\\'; }

}  // namespace

bool isNetworkPath(std::string_view path) {
  if (path.size() < 2 || !isEitherSeparator(path[0]) || !isEitherSeparator(path[1])) return false;
  // "\\?\C:\..." is a drive of this machine.
  const bool drive = path.size() > 5 && path[2] == '?' && isEitherSeparator(path[3]) && path[5] == ':';
  return !drive;
}

}  // namespace plumetta
