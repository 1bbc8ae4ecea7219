// SPDX-License-Identifier: GPL-3.0-or-later
// Fades and the loop crossfade that is made of one.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "dsp/amplitude.h"

namespace plumetta {
namespace {

constexpr int32_t kBlockFrames = 1024;

// The gains of a fade in, block by block. Exponentials and cosines of a block follow from one at its start and a
// table of the steps inside a block (e^(a+b) = e^a e^b, and the cosine's addition theorem), in double precision,
// so that a gain costs two multiplications and is still right to the last bit of a float.
class FadeGains {
 public:
  FadeGains(FadeCurve curve, int32_t last) : curve_(curve), step_(1.0 / last) {
    for (int32_t k = 0; k < kBlockFrames; ++k) {
      const double x = k * step_;
      if (curve == FadeCurve::exponential) first_[k] = std::exp(x);
      if (curve == FadeCurve::sinus) {
        first_[k] = std::cos(std::numbers::pi / 2 * x);
        second_[k] = std::sin(std::numbers::pi / 2 * x);
      }
    }
  }

  // The gains of `count` frames from frame `start` of the fade.
  void fill(int32_t start, int32_t count, float* gains) const {
    switch (curve_) {
      case FadeCurve::linear:
        return fillPower(start, count, gains, [](double x) { return x; });
      case FadeCurve::square:
        return fillPower(start, count, gains, [](double x) { return x * x; });
      case FadeCurve::cubic:
        return fillPower(start, count, gains, [](double x) { return x * x * x; });
      case FadeCurve::exponential:
        return fillExponential(start, count, gains);
      case FadeCurve::sinus:
        return fillSinus(start, count, gains);
    }
  }

 private:
  template <class Power>
  void fillPower(int32_t start, int32_t count, float* gains, Power power) const {
    for (int32_t k = 0; k < count; ++k) gains[k] = static_cast<float>(power((start + k) * step_));
  }

  void fillExponential(int32_t start, int32_t count, float* gains) const {
    constexpr double kScale = 1.0 / (static_cast<double>(static_cast<float>(std::numbers::e)) - 1.0);
    const double base = std::exp(start * step_);
    for (int32_t k = 0; k < count; ++k) gains[k] = static_cast<float>((base * first_[k] - 1.0) * kScale);
  }

  // 1 - sin(π/2 (1 - x)) is 1 - cos(π/2 x).
  void fillSinus(int32_t start, int32_t count, float* gains) const {
    const double angle = std::numbers::pi / 2 * (start * step_);
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (int32_t k = 0; k < count; ++k) {
      gains[k] = static_cast<float>(1.0 - (cosine * first_[k] - sine * second_[k]));
    }
  }

  FadeCurve curve_;
  double step_;
  double first_[kBlockFrames] = {};
  double second_[kBlockFrames] = {};
};

// Multiplies each frame's active samples by its gain.
void applyGains(CWave& wave, int32_t first, const float* gains, int32_t count) {
  const auto channels = static_cast<size_t>(wave.channels());
  float* samples = wave.samples() + static_cast<size_t>(first) * channels;
  const auto frames = static_cast<size_t>(count);
  if (wave.allActive() && channels == 2) {
    for (size_t f = 0; f < frames; ++f) {
      samples[2 * f] *= gains[f];
      samples[2 * f + 1] *= gains[f];
    }
    return;
  }
  for (size_t c = 0; c < channels; ++c) {
    if (!wave.isActive(static_cast<int>(c))) continue;
    for (size_t f = 0; f < frames; ++f) samples[f * channels + c] *= gains[f];
  }
}

}  // namespace

bool fade(CWave& wave, FrameRange range, FadeCurve curve, FadeDirection direction) {
  range = range.ordered();
  if (range.first == range.last || !range.liesIn(wave)) return false;
  const int32_t last = range.last - range.first;
  const FadeGains fadeIn(curve, last);
  float gains[kBlockFrames];
  for (int32_t start = 0; start <= last; start += kBlockFrames) {
    const int32_t count = std::min(kBlockFrames, last - start + 1);
    if (direction == FadeDirection::in) {
      fadeIn.fill(start, count, gains);
    } else {
      // A fade out is the fade in of the mirrored frames.
      fadeIn.fill(last - start - count + 1, count, gains);
      std::reverse(gains, gains + count);
    }
    applyGains(wave, range.first + start, gains, count);
    wave.nextTurn();
  }
  return true;
}

bool crossfadeLoop(CWave& wave, double fraction) {
  if (!wave.loops.hasLoops()) return false;
  const FrameRange loop = FrameRange{wave.loops.start(0), wave.loops.end(0)}.ordered();
  if (loop.first == loop.last || !loop.liesIn(wave)) return false;
  // What precedes the loop must be long enough to blend with.
  const int32_t length = std::min(loop.last - loop.first, loop.first);
  const auto blended = static_cast<int32_t>(std::lround(length * fraction));
  if (blended == 0) return false;
  fade(wave, {loop.last - blended, loop.last}, FadeCurve::linear, FadeDirection::out);
  for (int32_t k = 0; k < blended; ++k) {
    const float weight = blended > 1 ? static_cast<float>(static_cast<double>(k) / (blended - 1)) : 0.0f;
    for (int c = 0; c < wave.channels(); ++c) {
      const float before = wave.sample(loop.first - blended + k, c);
      const int32_t frame = loop.last - blended + k;
      wave.setSample(frame, c, wave.sample(frame, c) + before * weight);
    }
  }
  return true;
}

}  // namespace plumetta
