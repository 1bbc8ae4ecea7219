// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/shared_library.h"

#include <dlfcn.h>

namespace plumetta {

bool SharedLibrary::open(const std::string& path) {
  close();
  // For dlopen no name at all is the running program, whose own main would then be called.
  if (path.empty()) {
    errorText_ = "A library has no name";
    return false;
  }
  // All symbols at once, so that a missing one fails here and not in the middle of a call.
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const char* text = dlerror();
    errorText_ = text != nullptr ? text : path;
  }
  return isOpen();
}

bool SharedLibrary::openOfSystem(const std::string& name) { return open(name); }

void SharedLibrary::close() {
  if (handle_ != nullptr) dlclose(handle_);
  handle_ = nullptr;
  errorText_.clear();
}

SharedLibrary::AnyFunction SharedLibrary::symbol(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  return reinterpret_cast<AnyFunction>(dlsym(handle_, name));
}

}  // namespace plumetta
