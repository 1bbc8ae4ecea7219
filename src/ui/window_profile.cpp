// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window_profile.h"

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
  if (!app_.files().makeFolders(app_.homeFolder()) && writeProfileString(path_, section, key, value)) return;
  if (failureTold_) return;
  failureTold_ = true;
  app_.prompter().message("Unable to write " + path_ +
                          "\nThe window's place and the values of dialogs are not remembered.");
}

void WindowProfile::setInteger(const std::string& section, const std::string& key, int value) {
  setText(section, key, std::to_string(value));
}

void WindowProfile::setReal(const std::string& section, const std::string& key, double value) {
  setText(section, key, numberText(value));
}

}  // namespace plumetta
