// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "audio/sample_ring.h"
#include "core/audio_widget.h"

namespace plumetta {

// The newest frames of two channels, for those who draw them. UI thread.
class StereoTrail {
 public:
  explicit StereoTrail(size_t frames) : left_(frames), right_(frames) {}

  size_t frames() const { return left_.size(); }
  // Interleaved pairs; what is no number or far beyond full scale is brought to where it can be drawn.
  void append(std::span<const float> pairs);
  void appendSilence(size_t frames);
  // Oldest first, always frames() of them.
  std::span<const float> left() const { return left_; }
  std::span<const float> right() const { return right_; }
  // Nothing that anybody could see.
  bool silent() const;

 private:
  // Makes room at the end for that many, which are at most frames().
  void shift(size_t frames);

  std::vector<float> left_, right_;
};

// Carries the first two channels of what is played from the audio thread to the UI thread. While nobody
// reads, the oldest stay and the newest are lost.
class SoundTap : public AudioWidget {
 public:
  SoundTap();

  void feed(const float* const* channels, int frames, int channelCount) noexcept override;
  void setPosition(double, uint32_t) noexcept override {}

  // Appends all but the newest `queuedFrames`, which are still on their way to the ear. How many frames that
  // was. UI thread.
  size_t readInto(StereoTrail& trail, size_t queuedFrames = 0);

 private:
  SampleRing ring_;
};

}  // namespace plumetta
