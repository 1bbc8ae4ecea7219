// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <system_error>

namespace plumetta {

struct LocalDeleter {
  void operator()(void* memory) const { LocalFree(memory); }
};

// The security of a file that its owner alone may touch; null leaves it to the folder's rules.
std::unique_ptr<void, LocalDeleter> ownerOnlyDescriptor();

// Gives `path` the access list and, where allowed, the owner of `model`; the rules of its folder when `model`
// doesn't exist. Nothing to do, and no error, on volumes that keep no access lists.
std::error_code copyAccess(const std::wstring& path, const std::wstring& model);

}  // namespace plumetta
