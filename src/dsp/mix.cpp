// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/mix.h"

#include <algorithm>

namespace plumetta {
namespace {

int32_t intoFile(const CWave& wave, int32_t position) {
  return std::clamp(position, 0, std::max(wave.frames() - 1, 0));
}

void takeLoops(CWave& wave, const CLoopPoints& loops, int32_t offset) {
  if (wave.loops.hasLoops() || !loops.hasLoops()) return;
  wave.loops = loops;
  for (int i = 0; i < loops.count(); ++i) {
    wave.loops.setStart(i, loops.start(i) + offset);
    wave.loops.setEnd(i, loops.end(i) + offset);
  }
}

}  // namespace

bool lengthenTo(CWave& wave, int32_t frames) {
  const int32_t present = wave.frames();
  if (frames <= present) return true;
  if (!wave.resize(frames, wave.channels())) return false;
  const size_t firstNew = wave.sampleCount();
  wave.setLayout(wave.channels(), frames);
  std::fill(wave.samples() + firstNew, wave.samples() + wave.sampleCount(), 0.0f);
  if (wave.envelope.active()) wave.envelope.setLength(frames);
  return true;
}

bool canMix(const CWave& wave, const CWave& source, int32_t position) {
  return source.channels() == wave.channels() && source.frames() <= kMaxFrames - intoFile(wave, position);
}

bool mixBuffer(CWave& wave, const CWave& source, int32_t position, float gain) {
  if (!canMix(wave, source, position)) return false;
  position = intoFile(wave, position);
  if (!lengthenTo(wave, position + source.frames())) return false;
  float* target = wave.samples() + static_cast<size_t>(position) * static_cast<size_t>(wave.channels());
  const float* added = source.samples();
  for (size_t i = 0; i < source.sampleCount(); ++i) target[i] += added[i] * gain;
  wave.markers.addAll(source.markers, position);
  takeLoops(wave, source.loops, position);
  return true;
}

}  // namespace plumetta
