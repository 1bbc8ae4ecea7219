// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/wide.h"

#include <windows.h>

#include <algorithm>

namespace plumetta {
namespace {

// A folder's path must leave room for a short file name (8.3) within 260; longer ones need the prefix.
constexpr size_t kLongPath = 248;

}  // namespace

std::wstring wide(std::string_view utf8) {
  const int length = static_cast<int>(utf8.size());
  const int units = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
  std::wstring utf16(static_cast<size_t>(std::max(units, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, utf16.data(), units);
  return utf16;
}

std::string narrow(std::wstring_view utf16) {
  const int length = static_cast<int>(utf16.size());
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, utf16.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(std::max(bytes, 0)), '\0');
  WideCharToMultiByte(CP_UTF8, 0, utf16.data(), length, utf8.data(), bytes, nullptr, nullptr);
  return utf8;
}

std::wstring fullPath(const std::string& path) {
  const std::wstring given = wide(path);
  std::wstring full(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetFullPathNameW(given.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0) return given;
    const bool complete = length < full.size();
    full.resize(length);
    if (complete) return full;
  }
}

std::wstring systemPath(const std::string& path) {
  std::wstring full = fullPath(path);
  const bool special = full.starts_with(L"\\\\.\\") || full.starts_with(L"\\\\?\\");
  if (full.size() < kLongPath || special) return full;
  return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

std::wstring finalPath(void* handle) {
  std::wstring path(GetFinalPathNameByHandleW(handle, nullptr, 0, 0), L'\0');
  path.resize(GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), 0));
  if (path.starts_with(L"\\\\?\\UNC\\")) return L"\\" + path.substr(7);
  return path.starts_with(L"\\\\?\\") ? path.substr(4) : path;
}

std::error_code lastSystemError() { return systemError(GetLastError()); }

std::error_code systemError(unsigned long code) { return {static_cast<int>(code), std::system_category()}; }

}  // namespace plumetta
