// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/plugin_text.h"

#include <cstdint>

namespace plumetta {
namespace {

bool continues(char c) { return (static_cast<uint8_t>(c) & 0xC0) == 0x80; }

// How many bytes a character has that begins with `first`; 0 when none does.
size_t lengthOf(uint8_t first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first < 0xE0) return 2;
  if (first >= 0xE0 && first < 0xF0) return 3;
  return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

// The second byte tells overlong forms, surrogates and what lies beyond the last character.
bool rightSecond(uint8_t first, uint8_t second) {
  if (first == 0xE0) return second >= 0xA0;
  if (first == 0xED) return second < 0xA0;
  if (first == 0xF0) return second >= 0x90;
  return first != 0xF4 || second < 0x90;
}

bool isUtf8(std::string_view text) {
  for (size_t i = 0; i < text.size();) {
    const auto first = static_cast<uint8_t>(text[i]);
    const size_t length = lengthOf(first);
    if (length == 0 || i + length > text.size()) return false;
    for (size_t k = 1; k < length; ++k) {
      if (!continues(text[i + k])) return false;
    }
    if (length > 1 && !rightSecond(first, static_cast<uint8_t>(text[i + 1]))) return false;
    i += length;
  }
  return true;
}

std::string fromLatin1(std::string_view text) {
  std::string utf8;
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte >= 0x80) utf8 += static_cast<char>(0xC0 | (byte >> 6));
    utf8 += byte < 0x80 ? c : static_cast<char>(0x80 | (byte & 0x3F));
  }
  return utf8;
}

}  // namespace

std::string plainText(std::string_view raw, size_t mostBytes) {
  if (!isUtf8(raw)) return fromLatin1(raw.substr(0, mostBytes));
  size_t end = raw.size() <= mostBytes ? raw.size() : mostBytes;
  while (end > 0 && end < raw.size() && continues(raw[end])) --end;
  return std::string(raw.substr(0, end));
}

}  // namespace plumetta
