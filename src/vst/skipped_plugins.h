// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace plumetta {

enum class SkipReason { crashed, hung };

// A library that came to harm when it was looked at or used, and the date of its file then.
struct SkippedPlugin {
  std::string path;
  long long fileTime = 0;
  SkipReason reason = SkipReason::crashed;

  // For a person.
  std::string text() const;
};

// The file that remembers them: a line each of date, reason and path, parted by tabs. Scans leave them out
// until the library's file has another date, or they are forgotten. Any one thread at a time.
class SkippedPlugins {
 public:
  SkippedPlugins(FileSystem& files, std::string path);

  const std::vector<SkippedPlugin>& all() const { return plugins_; }
  bool contains(const std::string& path) const;
  // Both write the file; false when it can't be written.
  bool add(const std::string& path, SkipReason reason);
  bool forget(const std::string& path);

 private:
  void load();
  bool save() const;

  FileSystem& files_;
  std::string path_;
  std::vector<SkippedPlugin> plugins_;
};

}  // namespace plumetta
