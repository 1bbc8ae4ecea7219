// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/plugin_list.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>

#include "platform/paths.h"
#include "platform/private_profile.h"
#include "vst/plugin_text.h"

namespace plumetta {
namespace {

constexpr const char* kTotal = "Total";
constexpr const char* kCounter = "Counter";
constexpr std::string_view kSectionStart = "Plug";
constexpr const char* kNone = "None";
constexpr const char* kNo = "0";
// More sections than a profile can hold.
constexpr int kMostSections = 1000000;

std::string sectionName(int index) {
  char name[32];
  std::snprintf(name, sizeof name, "Plug%3.3d", index);
  return name;
}

// The number in a section's name; nothing for a section that is no plug-in.
std::optional<int> indexOf(const std::string& section) {
  if (section.size() <= kSectionStart.size()) return std::nullopt;
  int index = -1;
  std::from_chars(section.data() + kSectionStart.size(), section.data() + section.size(), index);
  const bool own = index >= 0 && index < kMostSections && sameProfileName(section, sectionName(index));
  return own ? std::optional(index) : std::nullopt;
}

}  // namespace

const std::array<DescriptionKey, 13> kDescriptionKeys{{
    {"Path", &PluginDescription::path, kNone},
    {"Effect name", &PluginDescription::effectName, kNone},
    {"Vendor string", &PluginDescription::vendor, kNone},
    {"Product string", &PluginDescription::product, kNone},
    {"VST SDK Version", &PluginDescription::vstVersion, ""},
    {"Plug Version", &PluginDescription::version, ""},
    {"IsSynth", &PluginDescription::synth, kNo},
    {"Input number", &PluginDescription::inputs, kNone},
    {"Output number", &PluginDescription::outputs, kNone},
    {"Parameter number", &PluginDescription::parameters, ""},
    {"Program number", &PluginDescription::programs, ""},
    {"UID", &PluginDescription::uid, ""},
    {"Editor GUI", &PluginDescription::editor, ""},
}};

bool PluginDescription::isSynth() const { return parseProfileInt(synth) != 0; }

std::string PluginDescription::displayName() const {
  const std::string file = fileNameOf(path);
  return effectName.empty() ? file : effectName + " (" + file + ")";
}

std::string oneLine(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = ' ';
  }
  return text;
}

std::string uniqueIdText(int32_t uniqueId) {
  std::string raw;
  for (int shift = 24; shift >= 0; shift -= 8) {
    raw += static_cast<char>(static_cast<uint32_t>(uniqueId) >> shift & 0xFF);
  }
  return plainText(raw, raw.size());
}

PluginDescription describe(const VstPlugin& plugin) {
  const auto flag = [](bool set) { return std::string(set ? "1" : "0"); };
  const AEffect& effect = *plugin.effect();
  return {plugin.path(),
          plugin.effectName(),
          plugin.vendorName(),
          plugin.productName(),
          std::to_string(plugin.vstVersion()),
          std::to_string(plugin.vendorVersion()),
          flag(plugin.isSynth()),
          std::to_string(effect.numInputs),
          std::to_string(effect.numOutputs),
          std::to_string(effect.numParams),
          std::to_string(effect.numPrograms),
          uniqueIdText(effect.uniqueID),
          flag(plugin.hasEditor())};
}

int PluginListFile::counter() const {
  return std::clamp(readProfileInt(path_, kTotal, kCounter, 0), 0, kMostSections);
}

std::vector<PluginDescription> PluginListFile::load() const {
  const int count = counter();
  std::vector<int> indices;
  for (const std::string& section : profileSections(path_)) {
    if (const auto index = indexOf(section); index && *index < count) indices.push_back(*index);
  }
  std::ranges::sort(indices);
  indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
  std::vector<ProfileName> names;
  for (const int index : indices) {
    for (const DescriptionKey& key : kDescriptionKeys) names.push_back({sectionName(index), key.key});
  }
  const auto values = readProfileStrings(path_, names);
  std::vector<PluginDescription> plugins(indices.size());
  for (size_t i = 0; i < values.size(); ++i) {
    const DescriptionKey& key = kDescriptionKeys[i % kDescriptionKeys.size()];
    plugins[i / kDescriptionKeys.size()].*key.text = values[i].value_or(key.fallback);
  }
  return plugins;
}

bool PluginListFile::append(int index, const PluginDescription& plugin) const {
  std::vector<ProfileEntry> entries;
  for (const DescriptionKey& key : kDescriptionKeys) {
    entries.push_back({{sectionName(index), key.key}, profileTextOf(oneLine(plugin.*key.text))});
  }
  entries.push_back({{kTotal, kCounter}, std::to_string(index + 1)});
  return writeProfileStrings(path_, entries);
}

}  // namespace plumetta
