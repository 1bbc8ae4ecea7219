// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a program and as a bank file, given to a plug-in that bears nothing wrong: strict_plugin.cpp.
#include "vst/program_file.h"

#include <cstdlib>
#include <filesystem>

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static VstPlugin plugin;
  if (!plugin.loaded()) {
    // Loading goes to the plug-in's folder, where the fuzzer would not find its inputs.
    const auto folder = std::filesystem::current_path();
    if (plugin.load(STRICT_PLUGIN) != 0) std::abort();
    std::filesystem::current_path(folder);
  }
  loadProgram(plugin, {data, size});
  loadBank(plugin, {data, size});
  return 0;
}
