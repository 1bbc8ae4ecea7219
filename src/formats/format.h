// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "core/wave.h"
#include "formats/atomic_file.h"
#include "platform/file_system.h"

namespace plumetta {

enum class LoadStatus {
  loaded = 0,
  failed = -1,      // can't be opened, not supported, or no memory; `reason` says which
  mpegInside = -2,  // MPEG layer 3 inside RIFF: for another decoder
  cancelled = -3,
};

struct LoadResult {
  LoadStatus status = LoadStatus::loaded;
  std::string reason;                 // one sentence, when the load failed
  std::vector<std::string> warnings;  // what the person should know about a file that did load

  static LoadResult failure(std::string why) { return {LoadStatus::failed, std::move(why), {}}; }
};

struct SaveResult {
  bool saved = true;
  bool cancelled = false;
  std::string reason;  // one sentence, when it failed

  static SaveResult failure(std::string why) { return {false, false, std::move(why)}; }
  static SaveResult from(std::error_code error);
};

// A kind of audio file: how it is recognised, read and written.
struct Format {
  const char* name;                     // as dialogs show it
  std::vector<const char*> extensions;  // lower case, the usual one first
  bool (*probe)(FileSystem& files, const std::string& path);
  LoadResult (*read)(FileSystem& files, const std::string& path, CWave& wave);
  SaveResult (*write)(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync);

  bool hasExtension(const std::string& extension) const;
};

// Every format that the editor knows, in the order in which they are tried.
const std::vector<Format>& formatTable();
// The format whose content the file has; null when nobody knows it.
const Format* formatOfContent(FileSystem& files, const std::string& path);
// The format that a name asks for when saving; null when none can write it.
const Format* writableFormatOfName(const std::string& path);

}  // namespace plumetta
