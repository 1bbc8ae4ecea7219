// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>
#include <vector>

#include "vst/vst_plugin.h"

namespace plumetta {

inline constexpr const char* kPluginListEmpty = "VST list is empty, scan your directory first!";

// What the list keeps of a plug-in, each as the text that stands in the file.
struct PluginDescription {
  std::string path, effectName, vendor, product;
  std::string vstVersion, version;
  std::string synth;  // "1" or "0", as `editor`
  std::string inputs, outputs, parameters, programs;
  std::string uid;  // four characters
  std::string editor;

  bool isSynth() const;
  // "Name (file.so)", or the file's name alone.
  std::string displayName() const;
};

// A key of the list file and what it means where it is missing.
struct DescriptionKey {
  const char* key;
  std::string PluginDescription::*text;
  const char* fallback;
};
extern const std::array<DescriptionKey, 13> kDescriptionKeys;

// Without line ends and other control characters, which would break a file of lines.
std::string oneLine(std::string text);
// The four characters of a unique ID, the most significant byte first, as UTF-8: what isn't ASCII is Latin-1.
std::string uniqueIdText(int32_t uniqueId);

// Of a plug-in that is loaded.
PluginDescription describe(const VstPlugin& plugin);

// The file of plug-ins that scans have found ("plumetta.vst"): a profile with a section each, which are never
// removed one by one.
class PluginListFile {
 public:
  explicit PluginListFile(std::string path) : path_(std::move(path)) {}

  const std::string& path() const { return path_; }
  // In the order in which they were found. Sections that are missing below the counter are passed over.
  std::vector<PluginDescription> load() const;
  // The number of sections written so far.
  int counter() const;
  // False when the file can't be written. `index` is the section's number; the counter becomes one more.
  bool append(int index, const PluginDescription& plugin) const;

 private:
  std::string path_;
};

}  // namespace plumetta
