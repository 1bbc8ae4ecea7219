// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "platform/file_system.h"
#include "vst/rack.h"

namespace plumetta {

// The chain file (".sor"): a whole rack.

inline constexpr const char* kOldChainQuestion = "File format seems to be old one, do you want to continue?";

// One plug-in of a chain, as the file tells of it.
struct ChainPlugin {
  std::string path;
  int32_t position = 0;         // in the rack
  int32_t slot = -1;            // in the host; -1 for the first free one
  int32_t recordedProgram = 0;  // what the rack remembers for it
  int32_t program = 0;          // what the plug-in is told
  bool muted = false;
  std::vector<float> parameters;
  std::vector<uint8_t> state;  // opaque, of all programs; empty when there is none
};

using Chain = std::vector<ChainPlugin>;

// Longer than any chain file.
inline constexpr uint64_t kLargestPluginFile = uint64_t{1} << 30;

enum class ChainForm {
  current,
  old,    // or something else: the form has no mark of its own
  later,  // of a later version, from which nothing is read
};

// By the first bytes.
ChainForm chainFormOf(std::span<const uint8_t> bytes);
// Takes the content apart, in its form, and checks it whole. False when it is damaged: a count, a length or a
// position is beyond what there can be, or the file ends within a record.
bool parseChain(std::span<const uint8_t> bytes, ChainForm form, Chain& chain);

// What became of a chain's plug-ins: the paths of those that are not in the rack now.
struct ChainRestoration {
  std::vector<std::string> notLoaded;
  std::vector<std::string> onNetwork;  // code from another machine is never loaded
};

// Clears the rack and puts the chain's plug-ins into it, each as it was, with their editors.
ChainRestoration restoreChain(Rack& rack, const Chain& chain);

enum class ChainStates { with, without };

// The rack in the current form; empty when it is too long for the file's fields. Without the opaque states,
// which may be long in the making, it tells whether anything else has changed.
std::vector<uint8_t> chainBytes(const Rack& rack, ChainStates states = ChainStates::with);
std::error_code saveChain(FileSystem& files, const Rack& rack, const std::string& path);

}  // namespace plumetta
