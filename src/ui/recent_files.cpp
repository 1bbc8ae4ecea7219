// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/recent_files.h"

#include <algorithm>

namespace plumetta {
namespace {

constexpr const char* kSection = "Recent files";
constexpr size_t kStored = 16;  // the most that the setting allows

std::string keyOf(size_t i) { return "File" + std::to_string(i + 1); }

}  // namespace

RecentFiles::RecentFiles(WindowProfile& profile, const int& most) : profile_(profile), most_(most) {
  for (size_t i = 0; i < static_cast<size_t>(most_); ++i) {
    std::string path = profile_.text(kSection, keyOf(i), "");
    if (!path.empty() && std::ranges::find(paths_, path) == paths_.end()) paths_.push_back(std::move(path));
  }
}

void RecentFiles::add(const std::string& path) {
  if (!paths_.empty() && paths_.front() == path) return;
  std::erase(paths_, path);
  paths_.insert(paths_.begin(), path);
  followSettings();
}

void RecentFiles::followSettings() {
  if (paths_.size() > static_cast<size_t>(most_)) paths_.resize(static_cast<size_t>(most_));
  store();
}

void RecentFiles::remove(const std::string& path) {
  if (std::erase(paths_, path) > 0) store();
}

void RecentFiles::store() {
  std::vector<std::pair<std::string, std::string>> values;
  for (size_t i = 0; i < kStored; ++i) values.emplace_back(keyOf(i), i < paths_.size() ? paths_[i] : "");
  profile_.setTexts(kSection, values);
  if (onChanged) onChanged();
}

}  // namespace plumetta
