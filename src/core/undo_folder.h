// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "platform/file_system.h"
#include "platform/lock_file.h"

namespace plumetta {

// The folder of this process's undo files, and others that are not to outlive it, inside the program's own
// folder. A lock tells other running editors that it is in use; the folders of processes that ended without
// cleaning up are removed.
class UndoFolder {
 public:
  UndoFolder(FileSystem& files, std::string programFolder);
  ~UndoFolder();
  UndoFolder(const UndoFolder&) = delete;
  UndoFolder& operator=(const UndoFolder&) = delete;

  // The path, made and locked at the first call; empty when it can't be made.
  const std::string& path();
  // Removes what dead processes left behind.
  void removeLeftovers();

 private:
  void removeContents(const std::string& folder);

  FileSystem& files_;
  std::string programFolder_;
  std::string path_;
  std::optional<LockFile> lock_;
};

}  // namespace plumetta
