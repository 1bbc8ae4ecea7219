// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/private_profile.h"

#include <windows.h>

#include "platform/windows/wide.h"

// The functions for narrow strings: the executables' manifest makes the active code page UTF-8, so that names
// and the file's own bytes are UTF-8 alike. A path without a folder would mean the system's own folder.

namespace plumetta {

std::string readProfileString(const std::string& path, const std::string& section, const std::string& key,
                              const std::string& fallback) {
  // What no file holds: the system trims a fallback of its own, so it is told apart and put in here.
  const char* const absent = "\x01";
  const std::string file = narrow(systemPath(path));
  std::string value(256, '\0');
  for (;;) {
    const DWORD length = GetPrivateProfileStringA(section.c_str(), key.c_str(), absent, value.data(),
                                                  static_cast<DWORD>(value.size()), file.c_str());
    // One less than the room means that it was cut off there.
    if (length + 1 < value.size()) {
      value.resize(length);
      return value == absent ? fallback : value;
    }
    value.resize(value.size() * 4);
  }
}

bool writeProfileString(const std::string& path, const std::string& section, const std::string& key,
                        const std::string& value) {
  return WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(),
                                    narrow(systemPath(path)).c_str()) != 0;
}

}  // namespace plumetta
