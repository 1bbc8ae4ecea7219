// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file_identity.h"

#include "platform/paths.h"

namespace plumetta {

bool liesInFolder(const std::string& path, const std::string& folder) {
  if (!path.starts_with(folder)) return false;
  return path.size() == folder.size() || isPathSeparator(folder.back()) ||
         isPathSeparator(path[folder.size()]);
}

}  // namespace plumetta
