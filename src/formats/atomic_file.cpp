// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/atomic_file.h"

namespace plumetta {

std::error_code writeAtomically(FileSystem& files, const std::string& path, SyncToDisk sync,
                                const std::function<bool(OutputStream&)>& produce,
                                const std::function<std::error_code(const std::string&)>& complete) {
  const auto produceFile = [&](File& file) {
    OutputStream out(file);
    const bool finished = produce(out);
    const std::error_code error = out.flush();
    return !error && !finished ? std::make_error_code(std::errc::operation_canceled) : error;
  };
  return replaceFile(files, path, sync, produceFile, complete);
}

}  // namespace plumetta
