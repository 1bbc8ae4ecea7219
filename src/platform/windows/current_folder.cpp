// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/current_folder.h"

#include <windows.h>

#include <atomic>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// Null as long as nobody has left the folder in which the program was started.
std::atomic<const std::string*> leftFolder{nullptr};

std::string currentFolder() {
  std::wstring folder(GetCurrentDirectoryW(0, nullptr), L'\0');
  folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
  return narrow(folder);
}

}  // namespace

bool setCurrentFolder(const std::string& folder) {
  static const std::string start = currentFolder();
  leftFolder = &start;
  // The published call of old; with the program's UTF-8 code page it takes any name.
  return SetCurrentDirectoryA(folder.c_str()) != 0;
}

std::string startFolder() {
  const std::string* left = leftFolder;
  return left != nullptr ? *left : currentFolder();
}

bool leftStartFolder() { return leftFolder != nullptr; }

}  // namespace plumetta
