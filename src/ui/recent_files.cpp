// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/recent_files.h"

#include <algorithm>

namespace plumetta {
namespace {

constexpr const char* kSection = "Recent files";

std::string keyOf(size_t i) { return "File" + std::to_string(i + 1); }

}  // namespace

RecentFiles::RecentFiles(WindowProfile& profile) : profile_(profile) {
  for (size_t i = 0; i < kMost; ++i) {
    std::string path = profile_.text(kSection, keyOf(i), "");
    if (!path.empty() && std::ranges::find(paths_, path) == paths_.end()) paths_.push_back(std::move(path));
  }
}

void RecentFiles::add(const std::string& path) {
  if (!paths_.empty() && paths_.front() == path) return;
  std::erase(paths_, path);
  paths_.insert(paths_.begin(), path);
  if (paths_.size() > kMost) paths_.resize(kMost);
  store();
}

void RecentFiles::remove(const std::string& path) {
  if (std::erase(paths_, path) > 0) store();
}

void RecentFiles::store() {
  for (size_t i = 0; i < kMost; ++i) profile_.setText(kSection, keyOf(i), i < paths_.size() ? paths_[i] : "");
  if (onChanged) onChanged();
}

}  // namespace plumetta
