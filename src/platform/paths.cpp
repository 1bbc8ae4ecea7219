// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/paths.h"

#include <algorithm>

#include "platform/file_system.h"

namespace plumetta {
namespace {

constexpr const char* kSettingsName = "plumetta.cfg";

// Where the name begins: behind the last separator.
size_t nameStart(const std::string& path) {
  for (size_t i = path.size(); i > 0; --i) {
    if (isPathSeparator(path[i - 1])) return i;
  }
  return 0;
}

bool isWritableFolder(const std::string& folder) { return !nativeFileSystem().checkWritable(folder); }

}  // namespace

std::string fileNameOf(const std::string& path) { return path.substr(nameStart(path)); }

std::string folderOf(const std::string& path) {
  const size_t start = nameStart(path);
  if (start == 0) return ".";
  // "C:" alone would mean the drive's current folder rather than its root.
  const bool driveRoot = start == 3 && path[1] == ':' && isPathSeparator('\\');
  return start == 1 || driveRoot ? path.substr(0, start) : path.substr(0, start - 1);
}

std::string joinPath(const std::string& folder, const std::string& name) {
  if (folder.empty()) return name;
  if (isPathSeparator(folder.back())) return folder + name;
  return folder + (isPathSeparator('\\') ? '\\' : '/') + name;
}

std::string extensionOf(const std::string& path) {
  const std::string name = fileNameOf(path);
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) return {};
  std::string extension = name.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return extension;
}

std::string programFolder(const std::string& overridden) {
  if (!overridden.empty()) return absolutePath(overridden);
  const std::string own = executableFolder();
  const bool portable = nativeFileSystem().kind(joinPath(own, kSettingsName)) == FileKind::regular;
  return portable || isWritableFolder(own) ? own : userConfigFolder();
}

}  // namespace plumetta
