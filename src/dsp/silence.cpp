// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/silence.h"

#include <cmath>

#include "dsp/amplitude.h"

namespace plumetta {
namespace {

bool isSilent(const float* frame, size_t channels, float level) {
  for (size_t c = 0; c < channels; ++c) {
    if (!(std::fabs(frame[c]) < level)) return false;
  }
  return true;
}

}  // namespace

std::vector<FrameRange> findSound(const CWave& wave, FrameRange range, double levelDb, int64_t gapFrames) {
  std::vector<FrameRange> sound;
  if (wave.frames() == 0) return sound;
  range = range.ordered();
  const float level = gainOfLevel(levelDb);
  const auto channels = static_cast<size_t>(wave.channels());
  const float* samples = wave.samples();
  for (int64_t frame = range.first; frame <= range.last; ++frame) {
    if (isSilent(samples + static_cast<size_t>(frame) * channels, channels, level)) continue;
    const auto at = static_cast<int32_t>(frame);
    if (sound.empty() || frame - sound.back().last > gapFrames) {
      sound.push_back({at, at});
    } else {
      sound.back().last = at;
    }
  }
  return sound;
}

std::vector<FrameRange> silenceAround(const std::vector<FrameRange>& sound, FrameRange range,
                                      int64_t gapFrames) {
  std::vector<FrameRange> silence;
  int64_t from = range.first;
  const auto takeUpTo = [&](int64_t end) {
    if (end > from && end - from >= gapFrames) {
      silence.push_back({static_cast<int32_t>(from), static_cast<int32_t>(end - 1)});
    }
  };
  for (const FrameRange& stretch : sound) {
    takeUpTo(stretch.first);
    from = int64_t{stretch.last} + 1;
  }
  takeUpTo(int64_t{range.last} + 1);
  return silence;
}

std::optional<std::vector<FrameRange>> silentEnds(const CWave& wave, double levelDb) {
  const FrameRange whole{0, wave.frames() - 1};
  // No silence inside is as long as this, so all sound is one stretch.
  const auto sound = findSound(wave, whole, levelDb, kMaxFrames);
  if (sound.empty()) return std::nullopt;
  return silenceAround(sound, whole, 1);
}

}  // namespace plumetta
