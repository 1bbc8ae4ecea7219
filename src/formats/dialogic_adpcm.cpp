// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/dialogic_adpcm.h"

#include <algorithm>
#include <array>

namespace plumetta {
namespace {

// Each step is 1.1 times the one before.
constexpr std::array<int16_t, 49> kSteps{16,  17,  19,  21,  23,  25,   28,   31,   34,   37,  41,  45,  50,
                                         55,  60,  66,  73,  80,  88,   97,   107,  118,  130, 143, 157, 173,
                                         190, 209, 230, 253, 279, 307,  337,  371,  408,  449, 494, 544, 598,
                                         658, 724, 796, 876, 963, 1060, 1166, 1282, 1411, 1552};
constexpr std::array<int8_t, 8> kIndexShift{-1, -1, -1, -1, 2, 4, 6, 8};

}  // namespace

int DialogicAdpcm::decode(uint8_t code) {
  const int step = kSteps[static_cast<size_t>(stepIndex_)];
  int difference = step >> 3;
  if (code & 4) difference += step;
  if (code & 2) difference += step >> 1;
  if (code & 1) difference += step >> 2;
  predictor_ = std::clamp(predictor_ + (code & 8 ? -difference : difference), -2048, 2047);
  stepIndex_ = std::clamp(stepIndex_ + kIndexShift[code & 7], 0, static_cast<int>(kSteps.size()) - 1);
  return predictor_;
}

uint8_t DialogicAdpcm::encode(int sample) {
  int step = kSteps[static_cast<size_t>(stepIndex_)];
  int difference = sample - predictor_;
  uint8_t code = 0;
  if (difference < 0) {
    code = 8;
    difference = -difference;
  }
  // One bit of the code for the step, its half and its quarter.
  for (const uint8_t bit : {uint8_t{4}, uint8_t{2}, uint8_t{1}}) {
    if (difference >= step) {
      code |= bit;
      difference -= step;
    }
    step >>= 1;
  }
  decode(code);  // goes on from what the decoder will have
  return code;
}

}  // namespace plumetta
