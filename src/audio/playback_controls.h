// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>

#include "audio/audio_driver.h"
#include "core/playback_source.h"

namespace plumetta {

// What the engine lets through: just below full scale, so that no converter behind reaches its ends.
inline constexpr float kOutputCeiling = 0.999f;

enum class WindMode { none = 0, rewind = 1, forward = 2 };

// What the UI thread sets and the audio thread obeys, each field by itself and without a lock. `source` alone
// is changed under the audio lock, so that whoever holds the lock has a document that stays.
struct PlaybackControls {
  PlaybackControls() {
    for (int k = 0; k < kMaxOutputChannels; ++k) routing[static_cast<size_t>(k)] = k < 2 ? k : -1;
  }

  std::atomic<PlaybackSource*> source{nullptr};
  std::atomic<bool> playing{false};
  std::atomic<bool> loop{false};
  std::atomic<bool> wholeFile{false};  // selection and loop are ignored
  std::atomic<WindMode> windMode{WindMode::none};
  std::atomic<int> windSpeed{4};  // 1..99, in blocks a block

  std::atomic<int> outputRate{44100};  // Hz
  std::atomic<float> generalVolume{1.0f};
  std::atomic<bool> resampling{true};  // to the output's rate
  std::atomic<bool> automation{true};  // the volume envelope is heard
  std::atomic<bool> rackEnabled{false};
  // The source channel that is heard on each output channel; -1 is silence.
  std::array<std::atomic<int>, kMaxOutputChannels> routing;

  // The largest magnitudes since the meters last lowered them.
  std::array<std::atomic<float>, kMaxOutputChannels> outputPeaks{};
  std::array<std::atomic<float>, kMaxOutputChannels> inputPeaks{};
};

}  // namespace plumetta
