// SPDX-License-Identifier: GPL-3.0-or-later
// Reading notes; writing them is the system's business.
#include "platform/crash_note.h"

#include <algorithm>

#include "platform/crash_note_file.h"
#include "platform/file_system.h"
#include "platform/paths.h"

namespace plumetta {

std::string takeCrashNotes(const std::string& folder) {
  constexpr size_t kMostBytes = 16384;
  const std::string path = joinPath(folder, kCrashNoteName);
  FileSystem& files = nativeFileSystem();
  std::error_code error;
  std::string text;
  if (const auto file = files.openForReading(path, error)) {
    text.resize(static_cast<size_t>(std::min<uint64_t>(file->size(), kMostBytes)));
    text.resize(file->read(text.data(), text.size(), error));
  }
  if (!text.empty()) files.remove(path);
  return text;
}

}  // namespace plumetta
