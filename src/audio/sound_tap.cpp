// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/sound_tap.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace plumetta {
namespace {

// The longest queue of a device, eight buffers of 4096 frames, and as much again for the UI's own period.
constexpr size_t kRingFrames = size_t{1} << 16;
constexpr int kPieceFrames = 256;
constexpr float kFar = 8.0f;
constexpr float kInvisible = 1e-5f;  // -100 dB

float drawable(float x) { return std::isfinite(x) ? std::clamp(x, -kFar, kFar) : 0.0f; }

bool allInvisible(const std::vector<float>& samples) {
  return std::all_of(samples.begin(), samples.end(), [](float x) { return std::fabs(x) < kInvisible; });
}

}  // namespace

// ---- The trail ------------------------------------------------------------------------------------------

void StereoTrail::shift(size_t frames) {
  const auto by = static_cast<std::ptrdiff_t>(frames);
  std::copy(left_.begin() + by, left_.end(), left_.begin());
  std::copy(right_.begin() + by, right_.end(), right_.begin());
}

void StereoTrail::append(std::span<const float> pairs) {
  const size_t fresh = std::min(pairs.size() / 2, frames());
  pairs = pairs.last(2 * fresh);
  shift(fresh);
  const size_t first = frames() - fresh;
  for (size_t i = 0; i < fresh; ++i) {
    left_[first + i] = drawable(pairs[2 * i]);
    right_[first + i] = drawable(pairs[2 * i + 1]);
  }
}

void StereoTrail::appendSilence(size_t count) {
  const size_t fresh = std::min(count, frames());
  shift(fresh);
  const auto by = static_cast<std::ptrdiff_t>(fresh);
  std::fill(left_.end() - by, left_.end(), 0.0f);
  std::fill(right_.end() - by, right_.end(), 0.0f);
}

bool StereoTrail::silent() const { return allInvisible(left_) && allInvisible(right_); }

// ---- The tap --------------------------------------------------------------------------------------------

SoundTap::SoundTap() : ring_(2 * kRingFrames) {}

void SoundTap::feed(const float* const* channels, int frames, int channelCount) noexcept {
  if (channelCount < 1) return;
  const float* left = channels[0];
  const float* right = channels[channelCount > 1 ? 1 : 0];
  std::array<float, size_t{2} * kPieceFrames> pairs;
  for (int first = 0; first < frames; first += kPieceFrames) {
    const int count = std::min(kPieceFrames, frames - first);
    for (int i = 0; i < count; ++i) {
      pairs[static_cast<size_t>(2 * i)] = left[first + i];
      pairs[static_cast<size_t>(2 * i + 1)] = right[first + i];
    }
    if (!ring_.push(pairs.data(), static_cast<size_t>(2 * count))) return;
  }
}

// Pieces are even and so is the ring, so no pair is ever torn.
size_t SoundTap::readInto(StereoTrail& trail, size_t queuedFrames) {
  const size_t waiting = ring_.waiting() / 2;
  const size_t heard = waiting - std::min(waiting, queuedFrames);
  for (size_t left = 2 * heard; left > 0;) {
    std::span<const float> front = ring_.front();
    front = front.first(std::min(front.size(), left));
    trail.append(front);
    ring_.pop(front.size());
    left -= front.size();
  }
  return heard;
}

}  // namespace plumetta
