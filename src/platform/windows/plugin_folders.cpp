// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/plugin_folders.h"

#include <windows.h>

#include <array>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// The folder that installers of plug-ins agree on; empty when there is no such value.
std::string registeredFolder(HKEY root) {
  std::array<wchar_t, 1024> value{};
  auto bytes = static_cast<DWORD>((value.size() - 1) * sizeof(wchar_t));
  const LSTATUS status = RegGetValueW(root, L"Software\\VST", L"VSTPluginsPath",
                                      RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ, nullptr, value.data(), &bytes);
  return status == ERROR_SUCCESS ? narrow(value.data()) : std::string();
}

std::string programFiles(const wchar_t* below) {
  std::array<wchar_t, 1024> value{};
  const DWORD length = GetEnvironmentVariableW(L"ProgramFiles", value.data(), value.size());
  if (length == 0 || length >= value.size()) return {};
  return narrow(value.data()) + narrow(below);
}

}  // namespace

const std::string_view kLibraryExtension = "dll";

std::vector<std::string> usualPluginFolders() {
  std::vector<std::string> folders;
  for (const std::string& folder :
       {registeredFolder(HKEY_CURRENT_USER), registeredFolder(HKEY_LOCAL_MACHINE),
        programFiles(L"\\VSTPlugins"), programFiles(L"\\Steinberg\\VSTPlugins"),
        programFiles(L"\\Common Files\\VST2"), programFiles(L"\\Common Files\\Steinberg\\VST2")}) {
    if (!folder.empty()) folders.push_back(folder);
  }
  return folders;
}

long long fileTime(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA facts{};
  if (GetFileAttributesExW(systemPath(path).c_str(), GetFileExInfoStandard, &facts) == 0) return 0;
  const ULARGE_INTEGER time{{facts.ftLastWriteTime.dwLowDateTime, facts.ftLastWriteTime.dwHighDateTime}};
  // From units of 100 ns since 1601.
  return static_cast<long long>(time.QuadPart / 10000000) - 11644473600LL;
}

}  // namespace plumetta
