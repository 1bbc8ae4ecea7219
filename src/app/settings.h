// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "doc/document_services.h"

namespace plumetta {

// The values of "plumetta.cfg", each with its default.
struct Settings {
  EditSettings edit;
};

// One setting: where it stands in the file, what is accepted, and where it lives.
struct SettingRow {
  const char* section;
  const char* key;
  bool EditSettings::*value;  // a boolean, stored as 0 or 1
};

const std::vector<SettingRow>& settingRows();

// The settings file. A key that is missing, or whose value fails its check, leaves the value as it is.
class SettingsFile {
 public:
  explicit SettingsFile(std::string path) : path_(std::move(path)) {}

  void load(Settings& settings) const;
  // False when the file could not be written.
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

}  // namespace plumetta
