// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace plumetta {
namespace {

bool sameFile(int descriptor, const std::string& path) {
  struct stat open {};
  struct stat named {};
  return fstat(descriptor, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
         open.st_dev == named.st_dev;
}

// Moves a file to a name that nothing has yet. Some file systems know no hard links, others no such renaming.
bool giveName(const std::string& from, const std::string& to) {
  if (link(from.c_str(), to.c_str()) == 0) {
    unlink(from.c_str());
    return true;
  }
  if (errno == EEXIST) return false;
  return renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

}  // namespace

std::optional<LockFile> LockFile::create(const std::string& path) {
  // Locked under a passing name first, so that it is never there unlocked.
  std::string passing = path + ".XXXXXX";
  const int descriptor = mkostemp(passing.data(), O_CLOEXEC);
  if (descriptor < 0) return std::nullopt;
  const bool held = flock(descriptor, LOCK_EX | LOCK_NB) == 0;
  if (held && giveName(passing, path)) return LockFile(descriptor, path);
  const bool taken = errno == EEXIST;
  ::close(descriptor);
  unlink(passing.c_str());
  // What has the name may be left over from a process that has ended.
  return held && taken ? takeOver(path) : std::nullopt;
}

std::optional<LockFile> LockFile::takeOver(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC);
  if (descriptor < 0) return std::nullopt;
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 && sameFile(descriptor, path))
    return LockFile(descriptor, path);
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
