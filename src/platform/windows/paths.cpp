// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/paths.h"

#include <windows.h>

#include <shlobj.h>

#include <filesystem>

#include "platform/current_folder.h"
#include "platform/windows/wide.h"

namespace plumetta {
namespace {

std::wstring environmentVariable(const wchar_t* name) {
  std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

// A folder of the person's: by its environment variable, else as the shell knows it.
std::wstring knownFolder(const wchar_t* variable, int shellNumber) {
  const std::wstring named = environmentVariable(variable);
  if (!named.empty()) return named;
  wchar_t folder[MAX_PATH] = {};
  return SUCCEEDED(SHGetFolderPathW(nullptr, shellNumber, nullptr, SHGFP_TYPE_CURRENT, folder)) ? folder
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

std::string personalFolder() { return narrow(knownFolder(L"USERPROFILE", CSIDL_PROFILE)); }

std::string userConfigFolder() { return narrow(knownFolder(L"APPDATA", CSIDL_APPDATA)) + "\\Plumetta"; }

std::string absolutePath(const std::string& path) {
  // Names of devices mean something only as they stand.
  if (path.empty() || !leftStartFolder()) return narrow(fullPath(path));
  return narrow(fullPath(narrow((std::filesystem::path(wide(startFolder())) / wide(path)).wstring())));
}

}  // namespace plumetta
