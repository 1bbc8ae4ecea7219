// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/shared_library.h"

#include <utility>

namespace plumetta {

SharedLibrary::SharedLibrary(SharedLibrary&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)), errorText_(std::move(other.errorText_)) {}

SharedLibrary& SharedLibrary::operator=(SharedLibrary&& other) noexcept {
  std::swap(handle_, other.handle_);
  std::swap(errorText_, other.errorText_);
  return *this;
}

}  // namespace plumetta
