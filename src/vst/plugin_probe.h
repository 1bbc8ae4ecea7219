// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "vst/plugin_list.h"
#include "vst/skipped_plugins.h"

namespace plumetta {

// Libraries are looked at in a process of its own, so that one that crashes or hangs harms nothing. That
// process is this same program, called with kProbeSwitch, a word of the caller's that marks its lines, and
// the paths of several libraries.

inline constexpr const char* kProbeSwitch = "--probe-plugin";
inline constexpr std::chrono::seconds kProbeLimit{15};  // for one library

// What that process does: `words` are those behind the switch. Writes to standard output; gives its exit
// status.
int runPluginProbe(const std::vector<std::string>& words);

// Whoever wants to know. Both are called in the order of the paths.
struct ProbeListener {
  std::function<void(const std::string& path)> begins;
  std::function<void(const PluginDescription& plugin)> found;
  std::function<void(const std::string& path, SkipReason reason)> skipped;
  std::function<bool()> stopped;  // asked several times a second
};

class PluginProber {
 public:
  // `program` is the full path of this program.
  explicit PluginProber(std::string program, std::chrono::milliseconds limit = kProbeLimit)
      : program_(std::move(program)), limit_(limit) {}

  // Looks at one library after the other. False when the process can't be started.
  bool probe(const std::vector<std::string>& paths, const ProbeListener& listener) const;

 private:
  std::string program_;
  std::chrono::milliseconds limit_;
};

}  // namespace plumetta
