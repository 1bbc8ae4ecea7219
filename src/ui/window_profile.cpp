// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window_profile.h"

#include <charconv>

#include "platform/private_profile.h"
#include "ui/number_text.h"

namespace plumetta {

std::string WindowProfile::text(const std::string& section, const std::string& key,
                                const std::string& fallback) const {
  return readProfileString(path_, section, key, fallback);
}

int WindowProfile::integer(const std::string& section, const std::string& key, int fallback) const {
  return readProfileInt(path_, section, key, fallback);
}

double WindowProfile::real(const std::string& section, const std::string& key, double fallback) const {
  return parseNumber(text(section, key, "")).value_or(fallback);
}

void WindowProfile::setText(const std::string& section, const std::string& key, const std::string& value) {
  setTexts(section, {{key, value}});
}

void WindowProfile::setTexts(const std::string& section,
                             const std::vector<std::pair<std::string, std::string>>& values) {
  std::vector<ProfileEntry> entries;
  for (const auto& [key, value] : values) entries.push_back({{section, key}, value});
  if (!app_.files().makeFolders(app_.homeFolder()) && writeProfileStrings(path_, entries)) return;
  if (failureTold_) return;
  failureTold_ = true;
  app_.prompter().message("Unable to write " + path_ +
                          "\nThe window's place and the values of dialogs are not remembered.");
}

void WindowProfile::setInteger(const std::string& section, const std::string& key, int value) {
  setText(section, key, std::to_string(value));
}

void WindowProfile::setReal(const std::string& section, const std::string& key, double value) {
  // With seven decimals and a point, whatever the locale.
  char text[400];
  const auto result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 7);
  setText(section, key, std::string(text, result.ptr));
}

}  // namespace plumetta
