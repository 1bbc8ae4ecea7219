// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "app/application.h"

namespace plumetta {

// What the window remembers between runs, in "plumetta.ini": its place, recent files, folders and the last
// values of each dialog. A write that fails is told once in a run, not with every dialog.
class WindowProfile {
 public:
  explicit WindowProfile(Application& app) : app_(app), path_(app.profilePath()) {}

  std::string text(const std::string& section, const std::string& key, const std::string& fallback) const;
  int integer(const std::string& section, const std::string& key, int fallback) const;
  // The fallback also for what is no number.
  double real(const std::string& section, const std::string& key, double fallback) const;

  // Many at once, in one write.
  void setTexts(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values);
  void setText(const std::string& section, const std::string& key, const std::string& value);
  void setInteger(const std::string& section, const std::string& key, int value);
  void setReal(const std::string& section, const std::string& key, double value);

 private:
  Application& app_;
  std::string path_;
  bool failureTold_ = false;
};

}  // namespace plumetta
