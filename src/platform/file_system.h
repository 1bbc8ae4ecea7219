// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace plumetta {

// An open file. Every call reports its own failure; nothing throws. Not for use by two threads at once.
class File {
 public:
  virtual ~File() = default;

  // Reads up to `bytes`; returns how many came. Fewer than asked means the end of the file or `error`.
  virtual size_t read(void* destination, size_t bytes, std::error_code& error) = 0;
  // Writes all of it or reports why not.
  virtual std::error_code write(const void* source, size_t bytes) = 0;
  // Moves to a byte offset from the start.
  virtual std::error_code seek(uint64_t offset) = 0;
  // Bytes in the file when it was opened; 0 for one that is being written.
  virtual uint64_t size() const = 0;
  // Waits until the written bytes are on the disk.
  virtual std::error_code sync() = 0;
  // Closes and reports what only closing reveals. Destroying an open file closes it silently.
  virtual std::error_code close() = 0;
};

enum class FileKind { missing, regular, folder, special };

// The one door to the disk, so that a test can make any single operation fail. Paths are UTF-8.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // Opens a regular file for reading; a folder, a pipe or a device is refused rather than waited for.
  virtual std::unique_ptr<File> openForReading(const std::string& path, std::error_code& error) = 0;
  // Creates a file that must not exist yet, readable and writable by the user alone until `adoptAccess`.
  virtual std::unique_ptr<File> createNew(const std::string& path, std::error_code& error) = 0;
  // Opens a device or pipe for writing as it stands; nothing is created and nothing is cut off.
  virtual std::unique_ptr<File> openSpecialForWriting(const std::string& path, std::error_code& error) = 0;

  virtual FileKind kind(const std::string& path) = 0;
  // No error when the existing file may be overwritten by this user.
  virtual std::error_code checkWritable(const std::string& path) = 0;
  // Gives `path` the permissions (and owner, where allowed) of `model`, or those of any new file when
  // `model` doesn't exist.
  virtual std::error_code adoptAccess(const std::string& path, const std::string& model) = 0;
  // Puts `from` in the place of `to` in one step; afterwards a reader sees the old file or the new one.
  virtual std::error_code replace(const std::string& from, const std::string& to, bool syncFolder) = 0;
  virtual std::error_code remove(const std::string& path) = 0;
  virtual std::error_code makeFolders(const std::string& path) = 0;
  // Follows links to the file that a path finally names; the path itself when there is none yet.
  virtual std::string resolveLinks(const std::string& path) = 0;
  // Names, not paths, of the entries of a folder; empty when it can't be read.
  virtual std::vector<std::string> list(const std::string& folder) = 0;
};

// The disk of this machine. Any thread.
FileSystem& nativeFileSystem();

}  // namespace plumetta
