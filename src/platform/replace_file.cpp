// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/replace_file.h"

#include <atomic>

#include "platform/lock_file.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

using Produce = std::function<std::error_code(File&)>;
using Complete = std::function<std::error_code(const std::string&)>;

// Files that the system offers under these names (a shell's own output, a device) are never replaced; but
// shared memory, which many use for files that live shortly, is a folder like any other.
bool isDevicePath(const std::string& path) {
  if (path.starts_with("/dev/shm/")) return false;
  return path.starts_with("/dev/") || path.starts_with("/proc/");
}

// Short and free of the target's name, so that it fits wherever the target's own name does.
std::string temporaryName() {
  static std::atomic<unsigned> counter{0};
  return ".plumetta-" + std::to_string(processId()) + "-" + std::to_string(counter++) + ".tmp";
}

// A name may be taken by what a killed process of the same number left behind.
std::unique_ptr<File> createBeside(FileSystem& files, const std::string& target, std::string& path,
                                   std::error_code& error) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    path = joinPath(folderOf(target), temporaryName());
    auto file = files.createNew(path, error);
    if (file || error != std::errc::file_exists) return file;
  }
  return nullptr;
}

std::error_code produceInto(File& file, SyncToDisk sync, const Produce& produce) {
  std::error_code error = produce(file);
  if (!error && sync == SyncToDisk::yes) error = file.sync();
  const std::error_code closeError = file.close();
  return error ? error : closeError;
}

// `complete` has its own ways of writing to the file, so that the disk is waited for after it.
std::error_code completeFile(FileSystem& files, const std::string& path, SyncToDisk sync,
                             const Complete& complete) {
  std::error_code error = complete(path);
  if (error || sync == SyncToDisk::no) return error;
  const auto file = files.openSpecialForWriting(path, error);
  if (!file) return error;
  error = file->sync();
  const std::error_code closeError = file->close();
  return error ? error : closeError;
}

std::error_code writeInPlace(FileSystem& files, const std::string& path, const Produce& produce) {
  std::error_code error;
  auto file = files.openSpecialForWriting(path, error);
  return file ? produceInto(*file, SyncToDisk::no, produce) : error;
}

}  // namespace

std::error_code replaceFile(FileSystem& files, const std::string& path, SyncToDisk sync,
                            const Produce& produce, const Complete& complete) {
  if (isDevicePath(path)) return writeInPlace(files, path, produce);
  const std::string target = files.resolveLinks(path);
  switch (files.kind(target)) {
    case FileKind::folder:
      return std::make_error_code(std::errc::is_a_directory);
    case FileKind::special:
      return writeInPlace(files, target, produce);
    case FileKind::regular:
      if (const auto error = files.checkWritable(target)) return error;
      break;
    case FileKind::missing:
      break;
  }
  std::string temporary;
  std::error_code error;
  auto file = createBeside(files, target, temporary, error);
  if (!file) return error;
  error = produceInto(*file, complete ? SyncToDisk::no : sync, produce);
  file.reset();
  if (!error && complete) error = completeFile(files, temporary, sync, complete);
  if (!error) error = files.adoptAccess(temporary, target);
  if (!error) error = files.replace(temporary, target, sync == SyncToDisk::yes);
  if (error) files.remove(temporary);
  return error;
}

std::error_code replaceFile(FileSystem& files, const std::string& path, SyncToDisk sync,
                            std::span<const uint8_t> content) {
  return replaceFile(files, path, sync,
                     [&](File& file) { return file.write(content.data(), content.size()); });
}

std::string readWholeFile(FileSystem& files, const std::string& path, uint64_t mostBytes,
                          std::error_code& error) {
  const auto file = files.openForReading(path, error);
  if (!file) return {};
  if (file->size() > mostBytes) {
    error = std::make_error_code(std::errc::file_too_large);
    return {};
  }
  error.clear();
  std::string content(static_cast<size_t>(file->size()), '\0');
  content.resize(file->read(content.data(), content.size(), error));
  return error ? std::string() : content;
}

}  // namespace plumetta
