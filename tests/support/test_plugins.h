// SPDX-License-Identifier: GPL-3.0-or-later
// Needs PLUMETTA_TEST_PLUGINS and PLUMETTA_TEST_PLUGIN_SUFFIX, the folder and the ending of the plug-ins.
#pragma once

#include <cstdlib>
#include <list>
#include <string>

#include "platform/paths.h"
#include "platform/shared_library.h"

namespace plumetta {

inline std::string testPlugin(const std::string& name) {
  return absolutePath(std::string(PLUMETTA_TEST_PLUGINS "/") + name + PLUMETTA_TEST_PLUGIN_SUFFIX);
}

// What the misbehaving plug-ins that are made from now on do.
inline void chooseFault(const std::string& name) {
  // The texts stay the environment's, also those that are no longer in force.
  static std::list<std::string> assignments;
  putenv(assignments.emplace_back("PLUMETTA_TEST_FAULT=" + name).data());
}

// What the plug-ins of a library have been told since the last time, see test_plugin.h.
inline std::string takeJournal(const std::string& name) {
  SharedLibrary library;
  library.open(testPlugin(name));
  auto* read = library.function<const char*(bool)>("readJournal");
  return read != nullptr ? read(true) : "no journal";
}

}  // namespace plumetta
