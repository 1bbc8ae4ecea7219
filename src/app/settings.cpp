// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/settings.h"

#include "platform/private_profile.h"

namespace plumetta {
namespace {

std::string textOf(const SettingRow& row, const Settings& settings) {
  return settings.edit.*row.value ? "1" : "0";
}

bool accept(const SettingRow& row, Settings& settings, int value) {
  if (value != 0 && value != 1) return false;
  settings.edit.*row.value = value == 1;
  return true;
}

}  // namespace

const std::vector<SettingRow>& settingRows() {
  static const std::vector<SettingRow> rows{
      {"General", "PasteReplace", &EditSettings::pasteReplace},
      {"General", "Undo in RAM", &EditSettings::undoInRam},
  };
  return rows;
}

void SettingsFile::load(Settings& settings) const {
  for (const SettingRow& row : settingRows()) {
    const int present = settings.edit.*row.value ? 1 : 0;
    accept(row, settings, readProfileInt(path_, row.section, row.key, present));
  }
}

bool SettingsFile::save(const Settings& settings) const {
  for (const SettingRow& row : settingRows()) {
    if (!writeProfileString(path_, row.section, row.key, textOf(row, settings))) return false;
  }
  return true;
}

SetResult setSetting(Settings& settings, std::string_view section, std::string_view key,
                     const std::string& value) {
  for (const SettingRow& row : settingRows()) {
    if (!sameProfileName(row.section, section) || !sameProfileName(row.key, key)) continue;
    return accept(row, settings, parseProfileInt(value)) ? SetResult::done : SetResult::refused;
  }
  return SetResult::unknownKey;
}

std::string settingsAsText(const Settings& settings) {
  std::string text;
  std::string_view section;
  for (const SettingRow& row : settingRows()) {
    if (section != row.section) text += std::string("[") + row.section + "]\n";
    section = row.section;
    text += std::string(row.key) + "=" + textOf(row, settings) + "\n";
  }
  return text;
}

}  // namespace plumetta
