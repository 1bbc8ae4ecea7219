// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace plumetta {

struct BatchSettings {
  std::string input, output;  // folders
  int function = 0;           // of `batchFunctions`
  bool recurse = false;       // into subfolders
  int jobs = 1;               // files in work at the same time
  // Of the files, every one whose number leaves `shard` when divided by `shards`.
  int shard = 0, shards = 1;
  bool mayChangeInput = false;  // a result may take the place of a file of the input folder
};

// What leads to one stretch of the log.
struct BatchEntry {
  size_t folder;  // of the plan
  std::string name;
  std::string resultName;
  bool renamed = false;        // the usual name of its result is another file's
  bool walkedAlready = false;  // a link to a folder whose files are taken elsewhere: nothing to do
};

struct BatchFolder {
  std::string input, output;
};

// Everything that a batch is going to do, in the order of its log. The same on every machine that sees the
// same tree.
struct BatchPlan {
  std::vector<BatchFolder> folders;  // a folder comes before those inside it
  std::vector<BatchEntry> entries;
};

// Walks the input folder: the entries of each folder in the order of their names' bytes, links to folders
// like folders but not in circles. The output folder, where it lies inside the input folder, is left out.
// `stopped` is asked for each entry and ends the walk.
BatchPlan planBatch(FileSystem& files, const BatchSettings& settings, const std::function<bool()>& stopped);

// Whether results would land among the files that are walked: the output folder is the input folder, or lies
// in it and subfolders are walked as well.
bool outputLiesInInput(const BatchSettings& settings);
// What is asked then, before the batch starts.
std::string overwriteQuestion(const BatchSettings& settings);
// What is said when a folder is missing.
inline constexpr const char* kSelectDirectories = "Select directories first";

}  // namespace plumetta
