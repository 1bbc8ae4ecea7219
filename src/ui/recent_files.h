// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ui/window_profile.h"

namespace plumetta {

// The files that were opened or saved last, the newest first, kept in the profile.
class RecentFiles {
 public:
  static constexpr size_t kMost = 10;

  explicit RecentFiles(WindowProfile& profile);

  void add(const std::string& path);
  void remove(const std::string& path);
  const std::vector<std::string>& paths() const { return paths_; }

  std::function<void()> onChanged;

 private:
  void store();

  WindowProfile& profile_;
  std::vector<std::string> paths_;
};

}  // namespace plumetta
