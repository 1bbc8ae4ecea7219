// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/prompter.h"
#include "core/undo_folder.h"
#include "net/background_transfer.h"
#include "platform/file_system.h"

namespace plumetta {

// A file that is written, read and gone with this object. One thread at a time.
class TemporaryFile {
 public:
  TemporaryFile(FileSystem& files, std::string path);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }
  // False once anything has gone wrong, making it included.
  bool write(const void* bytes, size_t count);
  // Closes it for reading. What has gone wrong first, if anything has.
  std::error_code finish();

 private:
  FileSystem& files_;
  std::string path_;
  std::error_code error_;
  std::unique_ptr<File> file_;
  bool made_;
};

// What was fetched, for as long as it is held.
struct FetchedFile {
  std::shared_ptr<TemporaryFile> file;
  std::string name;     // in the address; may be empty
  std::string address;  // as it may be shown
};

enum class FetchOutcome { done, failed, cancelled };

// Fetches files by their addresses into the folder of temporary files. UI thread; destroying it waits for
// what was cancelled, two seconds at most.
class UrlReader {
 public:
  UrlReader(FileSystem& files, UndoFolder& folder, Prompter& prompter, std::string agent)
      : files_(files), folder_(folder), prompter_(prompter), agent_(std::move(agent)) {}

  // Shows progress, which can be cancelled. What went wrong, a message has said.
  FetchOutcome fetch(const std::string& address, FetchedFile& fetched);

 private:
  std::shared_ptr<TemporaryFile> makeFile(const std::string& name);
  FetchOutcome tell(const FetchedFile& fetched, const std::string& reason);
  void forgetEnded();

  FileSystem& files_;
  UndoFolder& folder_;
  Prompter& prompter_;
  std::string agent_;
  int count_ = 0;
  // Cancelled, and not gone yet.
  std::vector<std::unique_ptr<BackgroundTransfer>> leaving_;
};

}  // namespace plumetta
