// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/place_signal.h"

#include "dsp/mix.h"

namespace plumetta {

bool placeSignal(CWave& wave, const CWave& signal, int32_t position, Placement how) {
  const int32_t before = how == Placement::insert ? wave.frames() : position;
  if (signal.frames() > kMaxFrames - before) return false;
  const bool roomy = how == Placement::insert ? wave.insertSilence(position, signal.frames())
                                              : lengthenTo(wave, position + signal.frames());
  if (!roomy) return false;
  int source = 0;
  for (int c = 0; c < wave.channels(); ++c) {
    if (!wave.isActive(c)) continue;
    for (int32_t frame = 0; frame < signal.frames(); ++frame) {
      const float present = how == Placement::mix ? wave.sample(position + frame, c) : 0.0f;
      wave.setSample(position + frame, c, present + signal.sample(frame, source));
    }
    if (signal.channels() > 1) ++source;
  }
  return true;
}

}  // namespace plumetta
