// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <system_error>

// Private to the Windows side: between the UTF-8 of this program and the UTF-16 of the system.

namespace plumetta {

std::wstring wide(std::string_view utf8);
std::string narrow(std::wstring_view utf16);

// Absolute, with the separators of the system; the path itself when the system can't tell.
std::wstring fullPath(const std::string& path);
// What the system's own functions are given: absolute, and free of the limit on a path's length.
std::wstring systemPath(const std::string& path);

// What an open file or folder is finally called, in the usual spelling; empty when the system can't tell.
std::wstring finalPath(void* handle);

// What the system says about the call that has just failed.
std::error_code lastSystemError();
std::error_code systemError(unsigned long code);

}  // namespace plumetta
