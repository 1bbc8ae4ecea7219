// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/wave.h"

namespace plumetta {

// What one pixel column of a waveform shows; all zero where there are no frames.
struct PeakColumn {
  float min = 0;
  float max = 0;
  float rms = 0;
};

// Smallest and largest sample and the energy of every channel, in bins of 256 frames, and again in bins of
// four times as many, up to one bin for the whole buffer; about 1.6 % of the samples' memory. What is not a
// number is passed over, and counts as silence in the energy.
class PeakPyramid {
 public:
  static constexpr int kBaseFrames = 256;
  static constexpr int kFanOut = 4;

  void rebuild(const CWave& wave) { rebuildFrom(wave, 0); }
  // Everything before the frame is as it was at the last build; the length may have changed.
  void rebuildFrom(const CWave& wave, int32_t firstChangedFrame);

  // Whether the last build was of a buffer of this length and layout.
  bool fits(const CWave& wave) const { return wave.frames() == frames_ && wave.channels() == channels_; }

  // Column i covers the frames in [first + i × fpp, first + (i + 1) × fpp), or the one before it where no
  // frame falls into a column: neighbours leave nothing out. Exact below 256 frames a pixel; above, edges
  // fall on bins: of 256 frames up to 4 bins a pixel, beyond that of at most a quarter of a column. `wave` is
  // the buffer of the last build.
  void columns(const CWave& wave, int channel, double firstFrame, double framesPerPixel,
               std::span<PeakColumn> out) const;

  size_t memoryBytes() const;

 private:
  // An empty bin, or one without any number, has min = +infinity and max = -infinity.
  struct Bin {
    float min;
    float max;
    float energy;  // sum of squares
  };
  struct Level {
    int64_t framesPerBin = 0;
    std::vector<Bin> bins;  // bin × channels + channel
  };

  void buildBase(const CWave& wave, int64_t firstBin);
  void buildLevel(size_t level, int64_t firstBin);
  PeakColumn columnFromSamples(const CWave& wave, int channel, int64_t from, int64_t to) const;
  PeakColumn columnFromBins(const Level& level, int channel, int64_t from, int64_t to) const;

  int channels_ = 0;
  int64_t frames_ = 0;
  std::vector<Level> levels_;
};

}  // namespace plumetta
