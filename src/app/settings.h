// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "app/setting_groups.h"
#include "platform/file_system.h"

namespace plumetta {

// Where in the settings a row's value lives, and so what kind it is: an integer; a boolean, stored as 0 or 1;
// a number with a fraction, stored as "%7.7f" with a point whatever the locale; a path or an address.
using IntegerPlace = std::function<int&(Settings&)>;
using BooleanPlace = std::function<bool&(Settings&)>;
using RealPlace = std::function<double&(Settings&)>;
using PathPlace = std::function<std::string&(Settings&)>;
using SettingPlace = std::variant<IntegerPlace, BooleanPlace, RealPlace, PathPlace>;

struct SettingChoice {
  int value;
  const char* label;  // in the preferences; "" for the number itself
};

enum class PreferencePage { none, general, display, editing, plugins, network };

// How the preferences show a setting; those without a page are chosen elsewhere.
struct Preference {
  PreferencePage page = PreferencePage::none;
  const char* label = "";
  const char* unit = "";
  // What a person may choose of what the file may hold.
  double minimum = -std::numeric_limits<double>::infinity();
  double maximum = std::numeric_limits<double>::infinity();
};

// One setting: where it stands in the file, what is accepted, and where it lives.
struct SettingRow {
  const char* section;
  std::string key;
  SettingPlace place;
  double minimum;  // of numbers, both included
  double maximum;
  std::vector<SettingChoice> choices;  // if there are any, nothing else is accepted
  std::optional<double> replacement;   // taken instead of a number that is not accepted
  Preference preference;
  // What is wrong with a path or address, in a sentence; null where any is accepted that the file can hold.
  std::string (*problemOf)(const std::string& text) = nullptr;
};

// In the order of the file.
const std::vector<SettingRow>& settingRows();

// Whether a row accepts a number.
bool acceptsNumber(const SettingRow& row, double number);
// What is wrong with a path or address for a row, in a sentence; empty when it is accepted.
std::string problemOfText(const SettingRow& row, const std::string& text);

// The settings file. A key that is missing, or whose value fails its check, leaves the value as it is.
class SettingsFile {
 public:
  explicit SettingsFile(std::string path) : path_(std::move(path)) {}

  void load(Settings& settings) const;
  // Every row in one replacement of the file; what else stands in it is kept. False when it can't be written.
  bool save(const Settings& settings) const;

 private:
  std::string path_;
};

enum class SetResult { done, refused, unknownKey };

// Changes one setting by its names, with the checks of loading.
SetResult setSetting(Settings& settings, std::string_view section, std::string_view key,
                     const std::string& value);
// All settings as the text of an INI file.
std::string settingsAsText(const Settings& settings);

// The folder that a file dialog opens in for a stored one: itself where it is there, else the person's home.
std::string dialogFolder(FileSystem& files, const std::string& stored);
// Whether the file can hold a path: at most 1024 bytes and no line ends or other control characters.
bool isStorablePath(std::string_view path);

}  // namespace plumetta
