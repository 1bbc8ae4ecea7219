// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <span>
#include <string>
#include <system_error>

#include "platform/file_system.h"

namespace plumetta {

enum class SyncToDisk { no, yes };

// Writes a file so that at every moment the path names the whole old file or the whole new one: `produce`
// writes beside the target, and one atomic replace puts the result in its place. On failure the old file is
// untouched and nothing is left behind. The permissions of an existing file stay. Devices and pipes, which
// can't be replaced, are written as they stand. `produce` reports what went wrong. `complete`, where given,
// works on the whole file, closed, before it takes its place; devices and pipes do without it.
std::error_code replaceFile(FileSystem& files, const std::string& path, SyncToDisk sync,
                            const std::function<std::error_code(File&)>& produce,
                            const std::function<std::error_code(const std::string& path)>& complete = {});
std::error_code replaceFile(FileSystem& files, const std::string& path, SyncToDisk sync,
                            std::span<const uint8_t> content);

// The bytes of a whole file of at most `mostBytes`; none, with the error, when it can't be read to its end.
// A longer one is errc::file_too_large.
std::string readWholeFile(FileSystem& files, const std::string& path, uint64_t mostBytes,
                          std::error_code& error);

}  // namespace plumetta
