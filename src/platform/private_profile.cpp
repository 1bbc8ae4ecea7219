// SPDX-License-Identifier: GPL-3.0-or-later
// What both implementations of private profiles share.
#include "platform/private_profile.h"

#include <algorithm>
#include <cstdint>

namespace plumetta {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

int digitOf(char c, int base) {
  const char small = lower(c);
  if (small >= '0' && small <= '9') return small - '0';
  return base == 16 && small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool isQuoted(std::string_view text) {
  return text.size() >= 2 && text.front() == text.back() && (text[0] == '"' || text[0] == '\'');
}

}  // namespace

std::string profileValueOf(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return std::string(isQuoted(text) ? text.substr(1, text.size() - 2) : text);
}

std::string profileTextOf(const std::string& value) {
  return profileValueOf(value) == value ? value : '"' + value + '"';
}

bool sameProfileName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower(x) == lower(y); });
}

int parseProfileInt(const std::string& value) {
  size_t i = 0;
  while (i < value.size() && (value[i] == ' ' || value[i] == '\t')) ++i;
  const bool negative = i < value.size() && value[i] == '-';
  if (i < value.size() && (value[i] == '-' || value[i] == '+')) ++i;
  const bool hexadecimal = i + 1 < value.size() && value[i] == '0' && lower(value[i + 1]) == 'x';
  const int base = hexadecimal ? 16 : 10;
  if (hexadecimal) i += 2;
  uint32_t number = 0;  // wraps as the platform's functions do
  for (; i < value.size() && digitOf(value[i], base) >= 0; ++i) {
    number = number * static_cast<uint32_t>(base) + static_cast<uint32_t>(digitOf(value[i], base));
  }
  return static_cast<int>(negative ? 0u - number : number);
}

std::string readProfileString(const std::string& path, const std::string& section, const std::string& key,
                              const std::string& fallback) {
  return readProfileStrings(path, {{section, key}}).front().value_or(fallback);
}

bool writeProfileString(const std::string& path, const std::string& section, const std::string& key,
                        const std::string& value) {
  return writeProfileStrings(path, {{{section, key}, value}});
}

int readProfileInt(const std::string& path, const std::string& section, const std::string& key,
                   int fallback) {
  const std::string value = readProfileString(path, section, key, "");
  return value.empty() ? fallback : parseProfileInt(value);
}

}  // namespace plumetta
