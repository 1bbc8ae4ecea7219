// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/lock_file.h"

namespace plumetta {

// How a ".rec" file is to be read, which it can't tell itself. Stands beside it as "NAME.rec.info", a line of
// text each.
struct TakeInfo {
  int sampleRate = 44100;
  int channels = 2;
  int bitDepth = 16;
  bool kept = false;  // on purpose, so that nobody is asked about it
};

// A ".rec" file that this process holds; no other offers to recover it meanwhile.
struct HeldTake {
  std::string path;
  TakeInfo info;
  std::optional<LockFile> lock;
  bool unwritten = false;  // the disk has not taken all of it yet
};

// The recordings in the program's own folder. No ".rec" file is ever deleted but by `remove`.
class TakeFolder {
 public:
  TakeFolder(FileSystem& files, std::string folder) : files_(files), folder_(std::move(folder)) {}

  // A new ".rec" file, named by the time of day, with its information beside it. Null, with nothing left
  // behind, when either can't be made.
  std::unique_ptr<File> create(const TakeInfo& info, HeldTake& take);
  // The takes of processes that have ended without bringing them into a document, oldest first; none that was
  // kept on purpose. `fallback` serves where the information is damaged.
  std::vector<HeldTake> unfinished(const TakeInfo& fallback);
  // From now on nobody is asked about it. False when that can't be written down.
  bool keep(HeldTake& take);
  // The take and what stands beside it.
  void remove(const HeldTake& take);

 private:
  bool writeInfo(const std::string& path, const TakeInfo& info);
  std::optional<TakeInfo> readInfo(const std::string& path, const TakeInfo& fallback);

  FileSystem& files_;
  std::string folder_;
};

}  // namespace plumetta
