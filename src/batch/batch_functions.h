// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "core/wave.h"

namespace plumetta {

// One entry of the list of functions.
struct BatchFunction {
  const char* text;  // as people see it
  // Changes the whole buffer; null when the samples stay as they are, or the plug-in chain works on them.
  // False when it could not be done: no memory, or stopped by the buffer's progress. A buffer for which there
  // is nothing to do (one that is stereo already) is done.
  bool (*apply)(CWave& wave);
  int mp3Kbits = 0;  // of the MP3 file that it is saved as; 0 saves WAV
  bool usesChain = false;

  const char* savedExtension() const { return mp3Kbits > 0 ? "mp3" : "wav"; }
};

// In the order in which they are offered and numbered.
const std::vector<BatchFunction>& batchFunctions();

// The function that a text means: its number, or its text with letters of either case.
std::optional<int> batchFunctionIn(std::string_view text);

}  // namespace plumetta
