// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli formats`: the sound files that can be read and written.
#include "cli/call.h"
#include "cli/json.h"
#include "formats/format.h"

namespace plumetta {
namespace {

void writeTexts(JsonWriter& json, const char* key, const std::vector<const char*>& texts) {
  json.key(key).beginArray();
  for (const char* text : texts) json.value(text);
  json.endArray();
}

std::string asJson(const Format& format) {
  JsonWriter json;
  json.beginObject();
  json.key("name").value(format.name);
  writeTexts(json, "extensions", format.extensions);
  writeTexts(json, "mime_types", format.mimeTypes);
  json.key("reads").value(format.read != nullptr);
  json.key("writes").value(format.write != nullptr);
  json.endObject();
  return json.text();
}

std::string asText(const Format& format) {
  std::string text = std::string(format.name) + " (";
  for (const char* extension : format.extensions) {
    if (!text.ends_with('(')) text += ", ";
    text += std::string(".") + extension;
  }
  text += "): ";
  if (format.read == nullptr) return text + "written";
  return text + (format.write == nullptr ? "read" : "read and written");
}

}  // namespace

int runFormats(const CallOptions&, WordReader words) {
  bool json = false;
  while (!words.atEnd()) {
    const std::string word = words.take();
    if (word != "--json") return wrongCall("formats: unknown argument " + word);
    json = true;
  }
  for (const Format& format : formatTable()) {
    if (!print((json ? asJson(format) : asText(format)) + "\n")) return kFileError;
  }
  return kAllDone;
}

}  // namespace plumetta
