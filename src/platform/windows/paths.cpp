// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/paths.h"

#include <windows.h>

#include <shlobj.h>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

std::wstring environmentVariable(const wchar_t* name) {
  std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

std::wstring roamingFolder() {
  const std::wstring named = environmentVariable(L"APPDATA");
  if (!named.empty()) return named;
  wchar_t folder[MAX_PATH] = {};
  return SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder)) ? folder
                                                                                                  : L".";
}

}  // namespace

bool isPathSeparator(char c) { return c == '\\' || c == '/'; }

std::string executableFolder() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return ".";
    if (length < path.size()) return folderOf(narrow(std::wstring_view(path).substr(0, length)));
    path.resize(path.size() * 2);
  }
}

std::string userConfigFolder() { return narrow(roamingFolder()) + "\\Plumetta"; }

std::string absolutePath(const std::string& path) { return narrow(fullPath(path)); }

}  // namespace plumetta
