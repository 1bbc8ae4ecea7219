// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/private_profile.h"

#include <windows.h>

#include "platform/file_system.h"
#include "platform/lock_file.h"
#include "platform/replace_file.h"
#include "platform/windows/wide.h"

// The functions for narrow strings: the executables' manifest makes the active code page UTF-8, so that names
// and the file's own bytes are UTF-8 alike. A path without a folder would mean the system's own folder.

namespace plumetta {
namespace {

// Beyond this no profile holds a value; the system's functions cut it off.
constexpr size_t kLongestValue = size_t{1} << 20;
constexpr uint64_t kLargestProfile = uint64_t{16} << 20;
constexpr size_t kLongestSections = size_t{1} << 24;

std::string systemName(const std::string& path) { return narrow(systemPath(path)); }

std::optional<std::string> readValue(const std::string& file, const ProfileName& name) {
  // What no file holds: the system trims a fallback of its own, so it is told apart.
  const char* const absent = "\x01";
  std::string value(256, '\0');
  for (;;) {
    const DWORD length =
        GetPrivateProfileStringA(name.section.c_str(), name.key.c_str(), absent, value.data(),
                                 static_cast<DWORD>(value.size()), file.c_str());
    // One less than the room means that it was cut off there.
    if (length + 1 < value.size() || value.size() >= kLongestValue) {
      value.resize(length);
      return value == absent ? std::nullopt : std::optional(value);
    }
    value.resize(value.size() * 4);
  }
}

// The system keeps what it has read last; this makes it look at the file again.
void forget(const std::string& path) {
  WritePrivateProfileStringA(nullptr, nullptr, nullptr, systemName(path).c_str());
}

// A copy to work on; an empty file when there is none to copy.
bool copyTo(const std::string& passing, const std::string& path) {
  FileSystem& files = nativeFileSystem();
  std::error_code error;
  std::string text;
  if (files.kind(path) != FileKind::missing) {
    text = readWholeFile(files, path, kLargestProfile, error);
    if (error) return false;
  }
  const auto copy = files.createNew(passing, error);
  return copy && !copy->write(text.data(), text.size()) && !copy->close();
}

bool writeAll(const std::string& path, const std::vector<ProfileEntry>& entries) {
  for (const auto& [name, value] : entries) {
    if (WritePrivateProfileStringA(name.section.c_str(), name.key.c_str(), value.c_str(),
                                   systemName(path).c_str()) == 0) {
      return false;
    }
  }
  forget(path);
  return true;
}

}  // namespace

std::vector<std::optional<std::string>> readProfileStrings(const std::string& path,
                                                           const std::vector<ProfileName>& names) {
  std::vector<std::optional<std::string>> values;
  for (const ProfileName& name : names) values.push_back(readValue(systemName(path), name));
  return values;
}

std::vector<std::string> profileSections(const std::string& path) {
  std::string names(4096, '\0');
  const std::string file = systemName(path);
  for (;;) {
    const DWORD length =
        GetPrivateProfileSectionNamesA(names.data(), static_cast<DWORD>(names.size()), file.c_str());
    // Two less than the room means that names were cut off there.
    if (length + 2 < names.size() || names.size() >= kLongestSections) {
      names.resize(length);
      break;
    }
    names.resize(names.size() * 4);
  }
  std::vector<std::string> sections;
  for (size_t start = 0; start < names.size();) {
    sections.emplace_back(names.c_str() + start);
    start += sections.back().size() + 1;
  }
  return sections;
}

// The system's function rewrites a file in its place; it is given a copy, which then replaces the file.
bool writeProfileStrings(const std::string& path, const std::vector<ProfileEntry>& entries) {
  FileSystem& files = nativeFileSystem();
  const std::string target = files.resolveLinks(path);
  const std::string passing = target + "." + std::to_string(processId());
  files.remove(passing);  // a killed process of the same number may have left one
  const bool written = copyTo(passing, target) && writeAll(passing, entries) &&
                       !files.adoptAccess(passing, target) && !files.replace(passing, target, false);
  if (!written) files.remove(passing);
  forget(target);
  return written;
}

}  // namespace plumetta
