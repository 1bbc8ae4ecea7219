// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/skipped_plugins.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <string_view>

#include "platform/plugin_folders.h"
#include "platform/replace_file.h"

namespace plumetta {
namespace {

constexpr uint64_t kLargestFile = uint64_t{1} << 22;
constexpr std::string_view kCrashed = "crashed";
constexpr std::string_view kHung = "hung";

// What stands before the next tab; the rest stays.
std::string_view takeField(std::string_view& line) {
  const size_t end = std::min(line.find('\t'), line.size());
  const std::string_view field = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return field;
}

std::optional<SkippedPlugin> parseLine(std::string_view line) {
  SkippedPlugin plugin;
  const std::string_view time = takeField(line);
  const std::string_view reason = takeField(line);
  const auto [end, error] = std::from_chars(time.data(), time.data() + time.size(), plugin.fileTime);
  const bool known = reason == kCrashed || reason == kHung;
  if (error != std::errc{} || end != time.data() + time.size() || !known || line.empty()) return std::nullopt;
  plugin.reason = reason == kHung ? SkipReason::hung : SkipReason::crashed;
  plugin.path = line;
  return plugin;
}

std::string lineOf(const SkippedPlugin& plugin) {
  const std::string_view reason = plugin.reason == SkipReason::hung ? kHung : kCrashed;
  return std::to_string(plugin.fileTime) + '\t' + std::string(reason) + '\t' + plugin.path + '\n';
}

}  // namespace

std::string SkippedPlugin::text() const {
  return reason == SkipReason::hung ? "does not come back when it is loaded" : "has crashed";
}

SkippedPlugins::SkippedPlugins(FileSystem& files, std::string path) : files_(files), path_(std::move(path)) {
  load();
}

void SkippedPlugins::load() {
  std::error_code error;
  const std::string text = readWholeFile(files_, path_, kLargestFile, error);
  std::string_view rest = text;
  while (!rest.empty()) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    if (auto plugin = parseLine(rest.substr(0, end))) plugins_.push_back(std::move(*plugin));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

bool SkippedPlugins::save() const {
  std::string text;
  for (const SkippedPlugin& plugin : plugins_) text += lineOf(plugin);
  return !replaceFile(files_, path_, SyncToDisk::no,
                      std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

bool SkippedPlugins::contains(const std::string& path) const {
  const auto found = std::ranges::find(plugins_, path, &SkippedPlugin::path);
  return found != plugins_.end() && found->fileTime == fileTime(path);
}

bool SkippedPlugins::add(const std::string& path, SkipReason reason) {
  // A line's worth of anything else could not be read back.
  if (path.find('\n') != std::string::npos) return true;
  std::erase_if(plugins_, [&](const SkippedPlugin& plugin) { return plugin.path == path; });
  plugins_.push_back({path, fileTime(path), reason});
  return save();
}

bool SkippedPlugins::forget(const std::string& path) {
  const auto same = [&](const SkippedPlugin& plugin) { return plugin.path == path; };
  return std::erase_if(plugins_, same) == 0 || save();
}

}  // namespace plumetta
