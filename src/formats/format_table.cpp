// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "formats/format.h"
#include "formats/wav_reader.h"
#include "formats/wav_writer.h"
#include "platform/paths.h"

namespace plumetta {

SaveResult SaveResult::from(std::error_code error) {
  if (!error) return {};
  if (error == std::errc::operation_canceled) return {false, true, {}};
  return failure(error.message());
}

bool Format::hasExtension(const std::string& extension) const {
  return std::any_of(extensions.begin(), extensions.end(), [&](const char* own) { return extension == own; });
}

const std::vector<Format>& formatTable() {
  static const std::vector<Format> table{
      {"WAV audio", {"wav", "wave"}, probeWav, loadWav, saveWav},
  };
  return table;
}

const Format* formatOfContent(FileSystem& files, const std::string& path) {
  for (const Format& format : formatTable()) {
    if (format.read != nullptr && format.probe(files, path)) return &format;
  }
  return nullptr;
}

const Format* writableFormatOfName(const std::string& path) {
  const std::string extension = extensionOf(path);
  for (const Format& format : formatTable()) {
    if (format.write != nullptr && format.hasExtension(extension)) return &format;
  }
  return nullptr;
}

}  // namespace plumetta
