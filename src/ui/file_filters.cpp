// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/file_filters.h"

#include <algorithm>
#include <cctype>

#include "platform/paths.h"

namespace plumetta {
namespace {

std::string upperCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

// As a person reads them.
std::string listedPatterns(const Format& format) {
  std::string text;
  for (const char* extension : format.extensions) {
    text += (text.empty() ? "*." : ", *.") + std::string(extension);
  }
  return text;
}

// As names are compared with them, which on some systems tells upper case from lower.
std::string patterns(const Format& format) {
  std::string text;
  for (const char* extension : format.extensions) {
    text += (text.empty() ? "*." : ";*.") + std::string(extension) + ";*." + upperCase(extension);
  }
  return text;
}

std::string filterOf(const Format& format) {
  return std::string(format.name) + " (" + listedPatterns(format) + ")|" + patterns(format);
}

}  // namespace

std::string openFilter(const std::vector<Format>& formats) {
  std::string all, each;
  for (const Format& format : formats) {
    if (format.read == nullptr) continue;
    if (!all.empty()) all += ";";
    all += patterns(format);
    each += filterOf(format) + "|";
  }
  return "All known media files|" + all + "|" + each + "All files|*";
}

std::string saveFilter(const std::vector<const Format*>& writable) {
  std::string text;
  for (const Format* format : writable) {
    if (!text.empty()) text += "|";
    text += filterOf(*format);
  }
  return text;
}

std::vector<const Format*> writableFormats(const std::vector<Format>& formats) {
  std::vector<const Format*> writable;
  for (const Format& format : formats) {
    if (format.write != nullptr) writable.push_back(&format);
  }
  return writable;
}

int filterIndexOf(const std::vector<const Format*>& writable, const std::string& path) {
  for (size_t i = 0; i < writable.size(); ++i) {
    if (writable[i]->hasExtension(extensionOf(path))) return static_cast<int>(i);
  }
  return 0;
}

}  // namespace plumetta
