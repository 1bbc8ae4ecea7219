// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace plumetta {

// Writes one line of JSON, piece by piece; commas come by themselves.
class JsonWriter {
 public:
  JsonWriter& beginObject() { return open('{'); }
  JsonWriter& endObject() { return close('}'); }
  JsonWriter& beginArray() { return open('['); }
  JsonWriter& endArray() { return close(']'); }
  JsonWriter& key(std::string_view name);
  JsonWriter& value(std::string_view text);
  JsonWriter& value(const char* text) { return value(std::string_view(text)); }
  JsonWriter& value(bool flag) { return raw(flag ? "true" : "false"); }
  JsonWriter& value(int64_t number) { return raw(std::to_string(number)); }
  JsonWriter& value(int number) { return value(static_cast<int64_t>(number)); }
  JsonWriter& value(uint32_t number) { return value(static_cast<int64_t>(number)); }
  // The shortest text that reads back as the same number; null for what JSON can't say.
  JsonWriter& value(float number) { return real(number); }
  JsonWriter& value(double number) { return real(number); }
  JsonWriter& null() { return raw("null"); }

  const std::string& text() const { return text_; }

 private:
  JsonWriter& open(char bracket);
  JsonWriter& close(char bracket);
  JsonWriter& raw(std::string_view text);
  template <class Number>
  JsonWriter& real(Number number);
  void separate();

  std::string text_;
  bool first_ = true;  // nothing stands in the present object or array yet, or a key was just written
};

}  // namespace plumetta
