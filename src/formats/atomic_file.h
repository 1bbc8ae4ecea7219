// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <system_error>

#include "formats/output_stream.h"
#include "platform/replace_file.h"

namespace plumetta {

// As `replaceFile`, through a buffer. `produce` returns false to give up (cancelled).
std::error_code writeAtomically(FileSystem& files, const std::string& path, SyncToDisk sync,
                                const std::function<bool(OutputStream&)>& produce,
                                const std::function<std::error_code(const std::string& path)>& complete = {});

}  // namespace plumetta
