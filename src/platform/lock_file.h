// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace plumetta {

// A file that one living process holds. It frees itself when the process ends, however it ends.
class LockFile {
 public:
  // Creates the file already held: no moment exists in which another process could take it. One that an ended
  // process left under the name is taken over; nothing while a living one holds it.
  static std::optional<LockFile> create(const std::string& path);
  // Takes over the file of a process that has ended; nothing while its owner lives.
  static std::optional<LockFile> takeOver(const std::string& path);

  ~LockFile();  // lets go and removes the file
  LockFile(LockFile&& other) noexcept;
  LockFile& operator=(LockFile&&) = delete;
  LockFile(const LockFile&) = delete;

 private:
  LockFile(intptr_t handle, std::string path) : handle_(handle), path_(static_cast<std::string&&>(path)) {}
  intptr_t handle_;
  std::string path_;
};

uint64_t processId();

}  // namespace plumetta
