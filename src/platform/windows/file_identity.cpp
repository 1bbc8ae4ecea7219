// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file_identity.h"

#include <windows.h>

#include "platform/paths.h"
#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// Empty for what isn't there.
std::wstring finalPathOf(const std::string& path) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = CreateFileW(systemPath(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return {};
  std::wstring final = finalPath(file);
  CloseHandle(file);
  return final;
}

}  // namespace

std::string realPath(const std::string& path) {
  const std::string absolute = absolutePath(path);
  const std::wstring final = finalPathOf(absolute);
  if (!final.empty()) return narrow(final);
  const std::string folder = folderOf(absolute);
  const std::string name = fileNameOf(absolute);
  if (folder == absolute || folder == ".") return absolute;
  return name.empty() ? realPath(folder) : joinPath(realPath(folder), name);
}

std::string fileNameKey(const std::string& name) {
  std::wstring key = wide(name);
  CharUpperBuffW(key.data(), static_cast<DWORD>(key.size()));
  return narrow(key);
}

}  // namespace plumetta
