// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/shared_library.h"

#include <windows.h>

#include <system_error>

#include "platform/paths.h"
#include "platform/windows/wide.h"

namespace plumetta {

bool SharedLibrary::open(const std::string& path) {
  close();
  // No box of the system about a library that can't be loaded.
  DWORD before = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before);
  handle_ = LoadLibraryExW(wide(path).c_str(), nullptr,
                           LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  const DWORD error = GetLastError();
  SetThreadErrorMode(before, nullptr);
  if (handle_ == nullptr) errorText_ = std::system_category().message(static_cast<int>(error));
  return isOpen();
}

bool SharedLibrary::openOfSystem(const std::string& name) { return open(joinPath(executableFolder(), name)); }

void SharedLibrary::close() {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
  handle_ = nullptr;
  errorText_.clear();
}

SharedLibrary::AnyFunction SharedLibrary::symbol(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  return reinterpret_cast<AnyFunction>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace plumetta
