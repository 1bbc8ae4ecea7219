// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <optional>

#include "core/audio_widget.h"

namespace plumetta {

// A place in a document.
struct PlayTime {
  double frame;
  uint32_t sampleRate;  // Hz
};

// Tells the UI thread where playing has come to.
class PlayClock : public AudioWidget {
 public:
  void feed(const float* const*, int, int) noexcept override {}
  void setPosition(double frame, uint32_t sampleRate) noexcept override {
    ++turn_;
    frame_ = frame;
    sampleRate_ = sampleRate;
    ++turn_;
  }

  // The last place; nothing when there is none since the last call, or when it changes at this very moment.
  // UI thread.
  std::optional<PlayTime> take() {
    const unsigned turn = turn_;
    if (turn == taken_ || turn % 2 == 1) return std::nullopt;
    const PlayTime time{frame_, sampleRate_};
    if (turn_ != turn) return std::nullopt;
    taken_ = turn;
    return time;
  }

 private:
  // Odd while the two are being changed, so that a reader never takes halves of two places.
  std::atomic<unsigned> turn_{0};
  std::atomic<double> frame_{0};
  std::atomic<uint32_t> sampleRate_{0};
  unsigned taken_ = 0;
};

}  // namespace plumetta
