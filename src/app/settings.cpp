// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/paths.h"
#include "platform/private_profile.h"

namespace plumetta {
namespace {

constexpr size_t kLongestPath = 1024;

template <class... Kinds>
struct Overloaded : Kinds... {
  using Kinds::operator()...;
};
// Clang before 17 doesn't find this by itself.
template <class... Kinds>
Overloaded(Kinds...) -> Overloaded<Kinds...>;

std::string realText(double value) {
  char text[400];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 7).ptr;
  return {text, end};
}

// NaN for what is no number.
double parseReal(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  return whole ? number : std::numeric_limits<double>::quiet_NaN();
}

// What a row makes of a number: the number, its replacement, or nothing.
std::optional<double> accepted(const SettingRow& row, double number) {
  if (acceptsNumber(row, number)) return number;
  return std::isinf(number) ? std::nullopt : row.replacement;
}

// The text of a value as the profile is given it.
std::string textOf(const SettingRow& row, Settings& settings) {
  return std::visit(
      Overloaded{[&](const IntegerPlace& place) { return std::to_string(place(settings)); },
                 [&](const BooleanPlace& place) { return std::string(place(settings) ? "1" : "0"); },
                 [&](const RealPlace& place) { return realText(place(settings)); },
                 [&](const PathPlace& place) { return profileTextOf(place(settings)); }},
      row.place);
}

// Takes a value as it stands in a profile. False when it is refused.
bool take(const SettingRow& row, Settings& settings, const std::string& value) {
  if (const auto* path = std::get_if<PathPlace>(&row.place)) {
    if (!problemOfText(row, value).empty()) return false;
    (*path)(settings) = value;
    return true;
  }
  if (value.empty()) return false;
  const auto* real = std::get_if<RealPlace>(&row.place);
  const auto number = accepted(row, real != nullptr ? parseReal(value) : parseProfileInt(value));
  if (!number) return false;
  if (real != nullptr) (*real)(settings) = *number;
  if (const auto* place = std::get_if<IntegerPlace>(&row.place))
    (*place)(settings) = static_cast<int>(*number);
  if (const auto* place = std::get_if<BooleanPlace>(&row.place)) (*place)(settings) = *number == 1;
  return true;
}

}  // namespace

bool acceptsNumber(const SettingRow& row, double number) {
  const auto is = [number](const SettingChoice& choice) { return choice.value == number; };
  if (!row.choices.empty()) return std::ranges::any_of(row.choices, is);
  return number >= row.minimum && number <= row.maximum;  // false for NaN
}

std::string problemOfText(const SettingRow& row, const std::string& text) {
  if (!isStorablePath(text)) return "This is too long, or holds characters that can't be kept.";
  return row.problemOf != nullptr ? row.problemOf(text) : "";
}

bool isStorablePath(std::string_view path) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  return path.size() <= kLongestPath && std::ranges::none_of(path, isControl);
}

void SettingsFile::load(Settings& settings) const {
  std::vector<ProfileName> names;
  for (const SettingRow& row : settingRows()) names.push_back({row.section, row.key});
  const auto values = readProfileStrings(path_, names);
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i] && !values[i]->empty()) take(settingRows()[i], settings, *values[i]);
  }
}

bool SettingsFile::save(const Settings& settings) const {
  Settings source = settings;  // rows give places that could be written to
  std::vector<ProfileEntry> entries;
  for (const SettingRow& row : settingRows()) {
    entries.push_back({{row.section, row.key}, textOf(row, source)});
  }
  return writeProfileStrings(path_, entries);
}

SetResult setSetting(Settings& settings, std::string_view section, std::string_view key,
                     const std::string& value) {
  for (const SettingRow& row : settingRows()) {
    if (!sameProfileName(row.section, section) || !sameProfileName(row.key, key)) continue;
    return take(row, settings, profileValueOf(value)) ? SetResult::done : SetResult::refused;
  }
  return SetResult::unknownKey;
}

std::string settingsAsText(const Settings& settings) {
  Settings source = settings;
  std::string text;
  std::string_view section;
  for (const SettingRow& row : settingRows()) {
    if (section != row.section) text += std::string("[") + row.section + "]\n";
    section = row.section;
    text += row.key + "=" + textOf(row, source) + "\n";
  }
  return text;
}

std::string dialogFolder(FileSystem& files, const std::string& stored) {
  const bool usable =
      !stored.empty() && absolutePath(stored) == stored && files.kind(stored) == FileKind::folder;
  return usable ? stored : personalFolder();
}

}  // namespace plumetta
