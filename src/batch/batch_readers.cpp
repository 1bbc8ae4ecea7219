// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/batch_readers.h"

#include <algorithm>

#include "batch/batch_names.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr const char* kTriedByName[] = {"mp3", "ogg", "wv", "vox"};

const Format* readableFormat(const char* extension) {
  for (const Format& format : formatTable()) {
    if (format.read != nullptr && format.hasExtension(extension)) return &format;
  }
  return nullptr;
}

void addOnce(std::vector<const Format*>& formats, const Format* format) {
  if (format != nullptr && std::ranges::find(formats, format) == formats.end()) formats.push_back(format);
}

}  // namespace

std::vector<const Format*> batchReaders(FileSystem& files, const std::string& path) {
  std::vector<const Format*> formats;
  const std::string extension = lowerExtension(fileNameOf(path));
  for (const char* name : kTriedByName) {
    if (extension.find(name) != std::string::npos) addOnce(formats, readableFormat(name));
  }
  for (const Format* format : formatsOfContent(files, path)) {
    if (format != &rawFormat()) addOnce(formats, format);  // anything might be raw samples
  }
  return formats;
}

LoadStatus loadForBatch(FileSystem& files, const std::string& path, CWave& wave) {
  std::vector<const Format*> formats = batchReaders(files, path);
  for (size_t i = 0; i < formats.size(); ++i) {
    const LoadStatus status = formats[i]->read(files, path, {}, wave).status;
    if (status == LoadStatus::loaded || status == LoadStatus::cancelled) return status;
    if (status == LoadStatus::mpegInside) addOnce(formats, readableFormat("mp3"));
  }
  return LoadStatus::failed;
}

}  // namespace plumetta
