// SPDX-License-Identifier: GPL-3.0-or-later
// Fades and the loop crossfade that is made of one.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/cpu_variants.h"
#include "dsp/amplitude.h"

namespace plumetta {
namespace {

// Small enough for tables, gains and samples of a block to stay in the nearest cache together.
constexpr int32_t kBlockFrames = 512;

// The plain loops under a fade, over one block of gains. `step` is 1 / N, `start` the block's first frame.

PLUMETTA_WIDE_VECTORS void linearGains(int32_t start, int32_t count, double step, float* gains) {
  for (int32_t k = 0; k < count; ++k) gains[k] = static_cast<float>((start + k) * step);
}

PLUMETTA_WIDE_VECTORS void powerGains(int32_t start, int32_t count, double step, bool cubic, float* gains) {
  for (int32_t k = 0; k < count; ++k) {
    const double x = (start + k) * step;
    gains[k] = static_cast<float>(x * x * (cubic ? x : 1.0));
  }
}

// (base × table - 1) × scale
PLUMETTA_WIDE_VECTORS void exponentialGains(int32_t count, double base, const double* table, double scale,
                                            float* gains) {
  for (int32_t k = 0; k < count; ++k) gains[k] = static_cast<float>((base * table[k] - 1.0) * scale);
}

// 1 - cos(a + b)
PLUMETTA_WIDE_VECTORS void cosineGains(int32_t count, double cosine, double sine, const double* cosines,
                                       const double* sines, float* gains) {
  for (int32_t k = 0; k < count; ++k) {
    gains[k] = static_cast<float>(1.0 - (cosine * cosines[k] - sine * sines[k]));
  }
}

PLUMETTA_WIDE_VECTORS void scaleStereo(float* samples, const float* gains, size_t frames) {
  for (size_t f = 0; f < frames; ++f) {
    samples[2 * f] *= gains[f];
    samples[2 * f + 1] *= gains[f];
  }
}

// The gains of a fade in, block by block. Exponentials and cosines of a block follow from one at its start
// and a table of the steps inside a block (e^(a+b) = e^a e^b, and the cosine's addition theorem), in double
// precision, so that a gain costs two multiplications and is still right to the last bit of a float.
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
    // E is e as a 32-bit float.
    constexpr double kScale = 1.0 / (static_cast<double>(static_cast<float>(std::numbers::e)) - 1.0);
    const double angle = std::numbers::pi / 2 * (start * step_);
    switch (curve_) {
      case FadeCurve::linear:
        return linearGains(start, count, step_, gains);
      case FadeCurve::square:
        return powerGains(start, count, step_, false, gains);
      case FadeCurve::cubic:
        return powerGains(start, count, step_, true, gains);
      case FadeCurve::exponential:
        return exponentialGains(count, std::exp(start * step_), first_, kScale, gains);
      case FadeCurve::sinus:  // 1 - sin(π/2 (1 - x)) is 1 - cos(π/2 x)
        return cosineGains(count, std::cos(angle), std::sin(angle), first_, second_, gains);
    }
  }

 private:
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
  if (wave.allActive() && channels == 2) return scaleStereo(samples, gains, frames);
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
    if (k % kBlockFrames == 0) wave.nextTurn();
  }
  return true;
}

}  // namespace plumetta
