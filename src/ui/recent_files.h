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
  // `most`: how many the list holds; the settings change it.
  RecentFiles(WindowProfile& profile, const int& most);

  void add(const std::string& path);
  // The setting has changed: a shorter list loses its oldest files.
  void followSettings();
  void remove(const std::string& path);
  const std::vector<std::string>& paths() const { return paths_; }

  std::function<void()> onChanged;

 private:
  void store();

  WindowProfile& profile_;
  const int& most_;
  std::vector<std::string> paths_;
};

}  // namespace plumetta
