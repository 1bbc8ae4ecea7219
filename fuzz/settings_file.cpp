// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the settings file: loading leaves every value inside its bounds, and what is saved over them
// reads back as the same settings.
#include <cstdlib>

#include "app/settings.h"
#include "support/temporary_folder.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const TemporaryFolder folder;
  const std::string path = folder.file("plumetta.cfg");
  writeBytes(path, std::string(reinterpret_cast<const char*>(data), size));
  const SettingsFile file(path);
  Settings settings;
  file.load(settings);
  for (const SettingRow& row : settingRows()) {
    if (const auto* place = std::get_if<IntegerPlace>(&row.place)) {
      if (!acceptsNumber(row, (*place)(settings))) std::abort();
    } else if (const auto* real = std::get_if<RealPlace>(&row.place)) {
      if (!acceptsNumber(row, (*real)(settings))) std::abort();
    }
  }
  if (!file.save(settings)) std::abort();
  Settings back;
  file.load(back);
  // Seven decimals are kept of a number, so it is the texts that are the same.
  if (settingsAsText(back) != settingsAsText(settings)) std::abort();
  return 0;
}
