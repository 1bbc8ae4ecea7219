// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// The Dialogic (OKI) 4-bit ADPCM decoder of one channel, after Dialogic's "ADPCM Algorithm" note of 1988.
class DialogicAdpcm {
 public:
  // The next 12-bit sample, -2048 .. 2047, of a code in the low four bits.
  int decode(uint8_t code);

 private:
  int predictor_ = 0;
  int stepIndex_ = 0;
};

}  // namespace plumetta
