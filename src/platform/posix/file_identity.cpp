// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file_identity.h"

#include <filesystem>

#include "platform/paths.h"

namespace plumetta {

std::string realPath(const std::string& path) {
  std::error_code error;
  std::filesystem::path real = std::filesystem::weakly_canonical(absolutePath(path), error);
  if (error) return path;
  // What isn't there yet may end with a separator, which names nothing.
  if (!real.has_filename() && real.has_relative_path()) real = real.parent_path();
  return real.string();
}

std::string fileNameKey(const std::string& name) { return name; }

}  // namespace plumetta
