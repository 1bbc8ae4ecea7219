// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file_system.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>

#include "platform/paths.h"

namespace plumetta {
namespace {

// One call moves at most this much, below what the kernel takes at once.
constexpr size_t kLargestTransfer = size_t{1} << 30;

std::error_code lastError() { return {errno, std::generic_category()}; }

std::error_code check(int result) { return result == 0 ? std::error_code{} : lastError(); }

class PosixFile final : public File {
 public:
  PosixFile(int descriptor, uint64_t size) : descriptor_(descriptor), size_(size) {}
  ~PosixFile() override { close(); }
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;

  size_t read(void* destination, size_t bytes, std::error_code& error) override {
    size_t done = 0;
    while (done < bytes) {
      const ssize_t part = ::read(descriptor_, static_cast<char*>(destination) + done,
                                  std::min(bytes - done, kLargestTransfer));
      if (part < 0 && errno == EINTR) continue;
      if (part < 0) error = lastError();
      if (part <= 0) break;
      done += static_cast<size_t>(part);
    }
    return done;
  }

  std::error_code write(const void* source, size_t bytes) override {
    size_t done = 0;
    while (done < bytes) {
      const ssize_t part = ::write(descriptor_, static_cast<const char*>(source) + done,
                                   std::min(bytes - done, kLargestTransfer));
      if (part < 0 && errno == EINTR) continue;
      if (part < 0) return lastError();
      done += static_cast<size_t>(part);
    }
    return {};
  }

  std::error_code seek(uint64_t offset) override {
    return lseek(descriptor_, static_cast<off_t>(offset), SEEK_SET) < 0 ? lastError() : std::error_code{};
  }

  uint64_t size() const override { return size_; }
  std::error_code sync() override { return check(fsync(descriptor_)); }

  std::error_code close() override {
    if (descriptor_ < 0) return {};
    const int result = ::close(descriptor_);
    descriptor_ = -1;
    return check(result);
  }

 private:
  int descriptor_;
  uint64_t size_;
};

// The mode that a new file of this process gets. The mask can only be read by setting it, so it is read once,
// before there are threads.
const mode_t kNewFileMode = [] {
  const mode_t mask = umask(0);
  umask(mask);
  return static_cast<mode_t>(0666 & ~mask);
}();

class PosixFileSystem : public FileSystem {
 public:
  std::unique_ptr<File> openForReading(const std::string& path, std::error_code& error) override {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
      error = lastError();
      return nullptr;
    }
    struct stat facts {};
    if (fstat(descriptor, &facts) != 0) {
      error = lastError();
    } else if (S_ISDIR(facts.st_mode)) {
      error = std::make_error_code(std::errc::is_a_directory);
    } else if (!S_ISREG(facts.st_mode)) {
      error = std::make_error_code(std::errc::invalid_seek);
    } else {
      error.clear();
      posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
      return std::make_unique<PosixFile>(descriptor, static_cast<uint64_t>(facts.st_size));
    }
    ::close(descriptor);
    return nullptr;
  }

  std::unique_ptr<File> createNew(const std::string& path, std::error_code& error) override {
    return opened(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600), error);
  }

  std::unique_ptr<File> openSpecialForWriting(const std::string& path, std::error_code& error) override {
    return opened(open(path.c_str(), O_WRONLY | O_CLOEXEC), error);
  }

  FileKind kind(const std::string& path) override {
    struct stat facts {};
    if (stat(path.c_str(), &facts) != 0) return FileKind::missing;
    if (S_ISREG(facts.st_mode)) return FileKind::regular;
    return S_ISDIR(facts.st_mode) ? FileKind::folder : FileKind::special;
  }

  std::error_code checkWritable(const std::string& path) override {
    return check(faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS));
  }

  std::error_code adoptAccess(const std::string& path, const std::string& model) override {
    struct stat facts {};
    if (stat(model.c_str(), &facts) != 0) return check(chmod(path.c_str(), kNewFileMode));
    // Giving a file away is the right of few; the permissions matter, the owner is kept where it can be.
    if (chown(path.c_str(), facts.st_uid, facts.st_gid) != 0) errno = 0;
    return check(chmod(path.c_str(), facts.st_mode & 07777));
  }

  std::error_code replace(const std::string& from, const std::string& to, bool syncFolder) override {
    if (rename(from.c_str(), to.c_str()) != 0) return lastError();
    if (!syncFolder) return {};
    // The file is in place; a file system that can't sync folders takes nothing from that.
    const int folder = open(folderOf(to).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
      fsync(folder);
      ::close(folder);
    }
    return {};
  }

  std::error_code remove(const std::string& path) override {
    std::error_code error;
    std::filesystem::remove(path, error);
    return error;
  }

  std::error_code makeFolders(const std::string& path) override {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (!error && kind(path) != FileKind::folder) error = std::make_error_code(std::errc::not_a_directory);
    return error;
  }

  std::string resolveLinks(const std::string& path) override {
    std::error_code error;
    std::filesystem::path target = path;
    for (int hops = 0; hops < 40 && std::filesystem::is_symlink(target, error); ++hops) {
      const auto next = std::filesystem::read_symlink(target, error);
      if (error) break;
      target = target.parent_path() / next;
    }
    return target.string();
  }

  std::vector<std::string> list(const std::string& folder) override {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
      names.push_back(it->path().filename().string());
    }
    return names;
  }

 private:
  static std::unique_ptr<File> opened(int descriptor, std::error_code& error) {
    if (descriptor < 0) {
      error = lastError();
      return nullptr;
    }
    error.clear();
    return std::make_unique<PosixFile>(descriptor, 0);
  }
};

}  // namespace

FileSystem& nativeFileSystem() {
  static PosixFileSystem files;
  return files;
}

}  // namespace plumetta
