// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/channel_layout.h"

#include <utility>

namespace plumetta {
namespace {

// Makes room for a channel at `index`, holding what `source` gives for a frame; works from the last frame
// down, in place.
template <class Source>
bool widen(CWave& wave, int index, Source source) {
  const int channels = wave.channels();
  const int32_t frames = wave.frames();
  if (channels >= kMaxChannels || !wave.resize(frames, channels + 1)) return false;
  float* samples = wave.samples();
  for (int64_t frame = static_cast<int64_t>(frames) - 1; frame >= 0; --frame) {
    const float* from = samples + frame * channels;
    float* to = samples + frame * (channels + 1);
    const float inserted = source(from);
    for (int c = channels; c > index; --c) to[c] = from[c - 1];
    to[index] = inserted;
    for (int c = index - 1; c >= 0; --c) to[c] = from[c];
  }
  wave.setLayout(channels + 1, frames);
  return true;
}

}  // namespace

bool insertChannel(CWave& wave, int index) {
  if (index < 0 || index > wave.channels()) return false;
  if (!widen(wave, index, [](const float*) { return 0.0f; })) return false;
  if (wave.envelope.active()) wave.envelope.insertChannel(index);
  return true;
}

bool cloneChannel(CWave& wave, int index) {
  if (index < 0 || index >= wave.channels()) return false;
  if (!widen(wave, index + 1, [=](const float* frame) { return frame[index]; })) return false;
  if (wave.envelope.active()) {
    wave.envelope.insertChannel(index + 1);
    wave.envelope.copyChannel(index + 1, index);
  }
  return true;
}

bool swapWithNextChannel(CWave& wave, int index) {
  const int channels = wave.channels();
  if (index < 0 || index >= channels || channels < 2) return false;
  const int next = (index + 1) % channels;
  float* frame = wave.samples();
  for (int32_t f = 0; f < wave.frames(); ++f, frame += channels) std::swap(frame[index], frame[next]);
  wave.envelope.swapChannels(index, next);
  return true;
}

}  // namespace plumetta
