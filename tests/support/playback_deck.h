// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <vector>

#include "audio/playback_engine.h"
#include "audio/transport.h"
#include "support/forbid_allocation.h"

namespace plumetta {

// An engine with its buffers that is pulled by hand instead of by a device.
struct PlaybackDeck {
  static constexpr int kMostFrames = 4096;

  explicit PlaybackDeck(AudioLock& lock)
      : transport(lock, [this] { return outputStarts; }), engine(lock, transport.controls(), kMostFrames) {
    std::array<float*, kMaxOutputChannels> buffers{};
    for (size_t c = 0; c < buffers.size(); ++c) buffers[c] = room.data() + c * kMostFrames;
    engine.setBuffers(buffers);
  }

  // The channels of one block, as a driver would convert them.
  std::vector<std::vector<float>> pull(int frames, int channelCount = 2) {
    std::array<float*, kMaxOutputChannels> channels{};
    {
      const ForbidAllocation forbid;
      PlaybackEngine::callback(&engine, channels.data(), &frames, &channelCount);
    }
    std::vector<std::vector<float>> block;
    for (int c = 0; c < channelCount; ++c) {
      block.emplace_back(channels[static_cast<size_t>(c)], channels[static_cast<size_t>(c)] + frames);
    }
    return block;
  }

  bool outputStarts = true;
  std::vector<float> room = std::vector<float>(size_t{kMaxOutputChannels} * kMostFrames, 9.0f);
  Transport transport;
  PlaybackEngine engine;
};

}  // namespace plumetta
