// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/undo_folder.h"

#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr const char* kFolderPrefix = "~plumetta_undo_";
constexpr const char* kLockName = "lock";

}  // namespace

UndoFolder::UndoFolder(FileSystem& files, std::string programFolder)
    : files_(files), programFolder_(std::move(programFolder)) {}

UndoFolder::~UndoFolder() {
  if (!lock_) return;
  removeContents(path_);
  lock_.reset();
  files_.remove(path_);
}

const std::string& UndoFolder::path() {
  if (lock_) return path_;
  path_.clear();
  const std::string folder = joinPath(programFolder_, kFolderPrefix + std::to_string(processId()));
  if (files_.makeFolders(folder)) return path_;
  if (auto lock = LockFile::create(joinPath(folder, kLockName))) {
    lock_.emplace(std::move(*lock));
    path_ = folder;
    removeContents(path_);  // an ended process of the same number may have left some
  }
  return path_;
}

void UndoFolder::removeLeftovers() {
  for (const std::string& name : files_.list(programFolder_)) {
    if (!name.starts_with(kFolderPrefix)) continue;
    const std::string folder = joinPath(programFolder_, name);
    if (folder == path_) continue;
    // A folder without a lock file belongs to a process that is just starting: it is left alone.
    if (auto lock = LockFile::takeOver(joinPath(folder, kLockName))) {
      removeContents(folder);
      lock.reset();
      files_.remove(folder);
    }
  }
}

void UndoFolder::removeContents(const std::string& folder) {
  for (const std::string& name : files_.list(folder)) {
    if (name != kLockName) files_.remove(joinPath(folder, name));
  }
}

}  // namespace plumetta
