// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the list of plug-ins and as the file of those that are left out: both load, and the list can
// be added to, unless its file is one that nothing is added to.
#include "vst/plugin_list.h"

#include <cstdlib>

#include "support/temporary_folder.h"
#include "vst/skipped_plugins.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const TemporaryFolder folder;
  const PluginListFile list(folder.file("plumetta.vst"));
  writeBytes(list.path(), std::string(reinterpret_cast<const char*>(data), size));
  const SkippedPlugins skipped(nativeFileSystem(), list.path());
  if (skipped.all().size() > size || list.load().size() > size) std::abort();
  PluginDescription plugin;
  plugin.path = "added";
  const int index = list.counter();
  if (!list.append(index, plugin)) std::abort();
  const auto plugins = list.load();
  for (const PluginDescription& found : plugins) {
    if (found.path == "added") return 0;
  }
  // The profile keeps the first of two sections of one name; a million is the most that there can be.
  if (index < 1000000 && plugins.empty()) std::abort();
  return 0;
}
