// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <functional>

#include "platform/file_system.h"

namespace plumetta {

// The real disk, but for one operation that fails: the n-th of all that could.
class FailingFileSystem : public FileSystem {
 public:
  // Operations are counted from 0; a negative number lets all of them through.
  explicit FailingFileSystem(int failAt) : failAt_(failAt) {}

  int operations() const { return operations_; }

  std::unique_ptr<File> openForReading(const std::string& path, std::error_code& error) override {
    if (fails(error)) return nullptr;
    return wrap(disk().openForReading(path, error));
  }
  std::unique_ptr<File> createNew(const std::string& path, std::error_code& error) override {
    if (fails(error)) return nullptr;
    return wrap(disk().createNew(path, error));
  }
  std::unique_ptr<File> openSpecialForWriting(const std::string& path, std::error_code& error) override {
    if (fails(error)) return nullptr;
    return wrap(disk().openSpecialForWriting(path, error));
  }
  FileKind kind(const std::string& path) override { return disk().kind(path); }
  std::error_code checkWritable(const std::string& path) override {
    return attempt([&] { return disk().checkWritable(path); });
  }
  std::error_code adoptAccess(const std::string& path, const std::string& model) override {
    return attempt([&] { return disk().adoptAccess(path, model); });
  }
  std::error_code replace(const std::string& from, const std::string& to, bool syncFolder) override {
    return attempt([&] { return disk().replace(from, to, syncFolder); });
  }
  // Cleaning up always works: what is asked is whether it is done.
  std::error_code remove(const std::string& path) override { return disk().remove(path); }
  std::error_code makeFolders(const std::string& path) override {
    return attempt([&] { return disk().makeFolders(path); });
  }
  std::string resolveLinks(const std::string& path) override { return disk().resolveLinks(path); }
  std::vector<std::string> list(const std::string& folder) override { return disk().list(folder); }

 private:
  class FailingFile : public File {
   public:
    FailingFile(FailingFileSystem& owner, std::unique_ptr<File> file)
        : owner_(owner), file_(std::move(file)) {}
    size_t read(void* destination, size_t bytes, std::error_code& error) override {
      return owner_.fails(error) ? 0 : file_->read(destination, bytes, error);
    }
    std::error_code write(const void* source, size_t bytes) override {
      return owner_.attempt([&] { return file_->write(source, bytes); });
    }
    std::error_code seek(uint64_t offset) override {
      return owner_.attempt([&] { return file_->seek(offset); });
    }
    uint64_t size() const override { return file_->size(); }
    std::error_code sync() override {
      return owner_.attempt([&] { return file_->sync(); });
    }
    std::error_code close() override {
      const auto real = file_->close();
      return owner_.attempt([&] { return real; });
    }

   private:
    FailingFileSystem& owner_;
    std::unique_ptr<File> file_;
  };

  static FileSystem& disk() { return nativeFileSystem(); }
  bool fails(std::error_code& error) {
    if (operations_++ != failAt_) return false;
    error = std::make_error_code(std::errc::no_space_on_device);
    return true;
  }
  std::error_code attempt(const std::function<std::error_code()>& operation) {
    std::error_code error;
    return fails(error) ? error : operation();
  }
  std::unique_ptr<File> wrap(std::unique_ptr<File> file) {
    return file ? std::make_unique<FailingFile>(*this, std::move(file)) : nullptr;
  }

  int failAt_;
  std::atomic<int> operations_{0};  // recordings write on a thread of their own
};

}  // namespace plumetta
