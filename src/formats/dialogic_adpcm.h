// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// The Dialogic (OKI) 4-bit ADPCM codec of one channel, after Dialogic's "ADPCM Algorithm" note of 1988.
class DialogicAdpcm {
 public:
  // The next 12-bit sample, -2048 .. 2047, of a code in the low four bits.
  int decode(uint8_t code);
  // The code that brings the decoder closest to a 12-bit sample.
  uint8_t encode(int sample);

 private:
  int predictor_ = 0;
  int stepIndex_ = 0;
};

}  // namespace plumetta
