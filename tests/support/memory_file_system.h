// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstring>
#include <map>

#include "platform/file_system.h"

namespace plumetta {

// Files that live in memory alone.
class MemoryFileSystem : public FileSystem {
 public:
  std::map<std::string, std::string> contents;

  std::unique_ptr<File> openForReading(const std::string& path, std::error_code& error) override {
    const auto found = contents.find(path);
    if (found != contents.end()) return std::make_unique<MemoryFile>(found->second);
    error = std::make_error_code(std::errc::no_such_file_or_directory);
    return nullptr;
  }
  std::unique_ptr<File> createNew(const std::string& path, std::error_code& error) override {
    const auto [place, fresh] = contents.try_emplace(path);
    if (fresh) return std::make_unique<MemoryFile>(place->second);
    error = std::make_error_code(std::errc::file_exists);
    return nullptr;
  }
  std::unique_ptr<File> openSpecialForWriting(const std::string&, std::error_code& error) override {
    error = std::make_error_code(std::errc::no_such_device);
    return nullptr;
  }
  FileKind kind(const std::string& path) override {
    return contents.contains(path) ? FileKind::regular : FileKind::missing;
  }
  std::error_code checkWritable(const std::string&) override { return {}; }
  std::error_code adoptAccess(const std::string&, const std::string&) override { return {}; }
  std::error_code replace(const std::string& from, const std::string& to, bool) override {
    contents[to] = std::move(contents[from]);
    contents.erase(from);
    return {};
  }
  std::error_code remove(const std::string& path) override {
    contents.erase(path);
    return {};
  }
  std::error_code makeFolders(const std::string&) override { return {}; }
  std::string resolveLinks(const std::string& path) override { return path; }
  std::vector<std::string> list(const std::string&) override { return {}; }

 private:
  class MemoryFile : public File {
   public:
    explicit MemoryFile(std::string& bytes) : bytes_(bytes) {}
    size_t read(void* destination, size_t bytes, std::error_code&) override {
      const size_t part = std::min(bytes, bytes_.size() - std::min(position_, bytes_.size()));
      std::memcpy(destination, bytes_.data() + position_, part);
      position_ += part;
      return part;
    }
    std::error_code write(const void* source, size_t bytes) override {
      if (bytes_.size() < position_ + bytes) bytes_.resize(position_ + bytes);
      std::memcpy(bytes_.data() + position_, source, bytes);
      position_ += bytes;
      return {};
    }
    std::error_code seek(uint64_t offset) override {
      position_ = std::min<size_t>(offset, bytes_.size());
      return {};
    }
    uint64_t size() const override { return bytes_.size(); }
    std::error_code sync() override { return {}; }
    std::error_code close() override { return {}; }

   private:
    std::string& bytes_;
    size_t position_ = 0;
  };
};

}  // namespace plumetta
