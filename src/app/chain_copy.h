// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/file_system.h"
#include "platform/lock_file.h"
#include "vst/chain_file.h"

namespace plumetta {

// The chain of a process that has ended in no good order. Nobody else offers it meanwhile.
struct LeftChain {
  std::string path;
  Chain chain;
  LockFile lock;
};

// The rack's chain in the program's own folder, for the case that a plug-in takes the program down. UI
// thread.
class ChainCopy {
 public:
  ChainCopy(FileSystem& files, std::string folder, Rack& rack)
      : files_(files), folder_(std::move(folder)), rack_(rack) {}

  // Writes the copy when plug-ins have come or gone, and now and then when anything else has changed. About
  // once a second.
  void follow();
  // The same at once. An opaque state that has changed alone is not seen.
  void bringUpToDate();
  // The program ends in good order.
  void forget();
  // True when the copy could not be written, once.
  bool takeFailure() { return std::exchange(failed_, false); }

  // The first that somebody has left and that can be read.
  std::optional<LeftChain> left();
  // It is in the rack now, or has nothing that is wanted.
  void discard(const LeftChain& left) { files_.remove(left.path); }
  // Nobody is asked about it any more: it goes to keptPath(), in place of the last one.
  void keep(const LeftChain& left) { files_.replace(left.path, keptPath(), false); }
  std::string keptPath() const;

 private:
  void follow(std::chrono::seconds youngest);
  bool write();
  bool findPlace();

  FileSystem& files_;
  std::string folder_;
  Rack& rack_;
  std::string path_;  // empty while there is no copy
  std::optional<LockFile> lock_;
  std::vector<uint8_t> written_;  // without states
  std::chrono::steady_clock::time_point at_{};
  bool failed_ = false, told_ = false;
};

}  // namespace plumetta
