// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace plumetta {
namespace {

bool sameFile(int descriptor, const std::string& path) {
  struct stat open {};
  struct stat named {};
  return fstat(descriptor, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
         open.st_dev == named.st_dev;
}

}  // namespace

std::optional<LockFile> LockFile::create(const std::string& path) {
  // Locked under a passing name first, so that it is never there unlocked.
  const std::string passing = path + "." + std::to_string(processId());
  const int descriptor = open(passing.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor < 0) return std::nullopt;
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 && rename(passing.c_str(), path.c_str()) == 0) {
    return LockFile(descriptor, path);
  }
  ::close(descriptor);
  unlink(passing.c_str());
  return std::nullopt;
}

std::optional<LockFile> LockFile::takeOver(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC);
  if (descriptor < 0) return std::nullopt;
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 && sameFile(descriptor, path)) return LockFile(descriptor, path);
  ::close(descriptor);
  return std::nullopt;
}

LockFile::LockFile(LockFile&& other) noexcept
    : handle_(std::exchange(other.handle_, -1)), path_(std::move(other.path_)) {}

LockFile::~LockFile() {
  if (handle_ < 0) return;
  unlink(path_.c_str());
  ::close(static_cast<int>(handle_));
}

uint64_t processId() { return static_cast<uint64_t>(getpid()); }

}  // namespace plumetta
