// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/json.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace plumetta {
namespace {

// The length of the well-formed UTF-8 character at the start of the text; 0 when there is none.
size_t characterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const size_t length = lead < 0x80                   ? 1
                        : lead >= 0xC2 && lead < 0xE0 ? 2
                        : lead >= 0xE0 && lead < 0xF0 ? 3
                        : lead >= 0xF0 && lead < 0xF5 ? 4
                                                      : 0;
  if (length == 0 || length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return 0;
  }
  return length;
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  while (!text.empty()) {
    const size_t length = characterLength(text);
    const auto byte = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      result += "\\ufffd";  // a file name may hold bytes that are no text
    } else if (byte == '"' || byte == '\\') {
      result += {'\\', text[0]};
    } else if (byte < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", byte);
      result += escape;
    } else {
      result += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return result + "\"";
}

}  // namespace

void JsonWriter::separate() {
  if (!first_) text_ += ',';
  first_ = false;
}

JsonWriter& JsonWriter::open(char bracket) {
  separate();
  text_ += bracket;
  first_ = true;
  return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
  text_ += bracket;
  first_ = false;
  return *this;
}

JsonWriter& JsonWriter::raw(std::string_view text) {
  separate();
  text_ += text;
  return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
  separate();
  text_ += quoted(name) + ":";
  first_ = true;
  return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) { return raw(quoted(text)); }

template <class Number>
JsonWriter& JsonWriter::real(Number number) {
  if (!std::isfinite(number)) return null();
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, number).ptr;
  return raw({text, static_cast<size_t>(end - text)});
}

template JsonWriter& JsonWriter::real(float);
template JsonWriter& JsonWriter::real(double);

}  // namespace plumetta
