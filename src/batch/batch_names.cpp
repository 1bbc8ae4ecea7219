// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/batch_names.h"

#include <algorithm>
#include <map>
#include <set>

#include "batch/batch_readers.h"
#include "platform/file_identity.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

using Rivals = std::vector<BatchEntry*>;

// Which of several files with the same result keeps its name.
BatchEntry* firstOf(FileSystem& files, const std::string& folder, const Rivals& rivals) {
  for (BatchEntry* entry : rivals) {
    if (entry->name == entry->resultName) return entry;
  }
  for (BatchEntry* entry : rivals) {
    if (!batchReaders(files, joinPath(folder, entry->name)).empty()) return entry;
  }
  return rivals.front();
}

// The first name of "take.mp3.wav", "take.mp3 (2).wav" ... that nobody else has; takes it.
std::string freeName(const std::string& name, const std::string& extension, std::set<std::string>& taken) {
  std::string candidate = name + "." + extension;
  for (int number = 2; !taken.insert(fileNameKey(candidate)).second; ++number) {
    candidate = name + " (" + std::to_string(number) + ")." + extension;
  }
  return candidate;
}

}  // namespace

std::string lowerExtension(const std::string& name) {
  const size_t dot = name.rfind('.');
  std::string extension = dot == std::string::npos ? std::string() : name.substr(dot + 1);
  for (char& c : extension) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return extension;
}

std::string nameWithExtension(const std::string& name, const std::string& extension) {
  return name.substr(0, name.rfind('.')) + "." + extension;
}

void nameResults(FileSystem& files, const std::string& folder, const std::string& extension,
                 std::vector<BatchEntry*>& entries) {
  std::map<std::string, Rivals> byResult;
  std::set<std::string> taken;
  for (BatchEntry* entry : entries) {
    entry->resultName = nameWithExtension(entry->name, extension);
    const std::string key = fileNameKey(entry->resultName);
    byResult[key].push_back(entry);
    taken.insert(key);
  }
  for (const auto& group : byResult) {
    const Rivals& rivals = group.second;
    if (rivals.size() == 1) continue;
    const BatchEntry* first = firstOf(files, folder, rivals);
    for (BatchEntry* entry : rivals) {
      if (entry == first) continue;
      entry->resultName = freeName(entry->name, extension, taken);
      entry->renamed = true;
    }
  }
}

}  // namespace plumetta
