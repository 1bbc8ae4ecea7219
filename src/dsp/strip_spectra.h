// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/wave.h"
#include "dsp/frame_range.h"
#include "dsp/lane_transform.h"
#include "dsp/window_function.h"

namespace plumetta {

inline constexpr int kSmallestSpectrum = 16;
inline constexpr int kLargestSpectrum = 65536;
// Whether spectra of blocks of this many frames are made: powers of two between the two.
bool isSpectrumSize(int64_t frames);

struct SpectrumSettings {
  int size = 4096;  // frames a block; the spectrum has size / 2 + 1 lines, from 0 Hz to half the rate
  WindowKind window = WindowKind::hanning;
};

// The power spectra of several blocks of a buffer at once, each of one channel: two go through one complex
// transform, eight of these side by side. What is not a number counts as silence. Constant after
// construction; threads may share one, each with a bench of its own.
class StripSpectra {
 public:
  static constexpr int kStrips = 2 * static_cast<int>(LaneTransform::kLanes);

  struct Strip {
    int64_t start;  // the block's first frame, which may lie outside of the buffer
    int channel;
  };

  // What one thread works with.
  struct Bench {
    std::vector<double> re, im;  // rows of LaneTransform::kLanes
    std::vector<double> power;   // lines × kStrips, at powerAt
  };

  explicit StripSpectra(SpectrumSettings settings);

  Bench makeBench() const;
  size_t lines() const { return transform_.size() / 2 + 1; }
  // Adds the powers of at most kStrips blocks to those in the bench. Frames outside of `inside`, which lies
  // in the buffer, count as silence; an empty buffer is all silence.
  void addPowers(const CWave& wave, FrameRange inside, std::span<const Strip> strips, Bench& bench) const;
  static size_t powerAt(size_t line, int strip) {
    return line * kStrips + static_cast<size_t>(strip % 2) * LaneTransform::kLanes +
           static_cast<size_t>(strip / 2);
  }
  // The root of a power divided by this is the amplitude of a sine at that line, whatever the window, and the
  // value of a constant on the line of 0 Hz.
  double windowSum() const { return windowSum_; }

 private:
  bool readWholeStrips(const CWave& wave, FrameRange inside, std::span<const Strip> strips,
                       Bench& bench) const;
  void readStrips(const CWave& wave, FrameRange inside, std::span<const Strip> strips, Bench& bench) const;

  std::vector<double> window_;
  double windowSum_;
  LaneTransform transform_;
  std::vector<size_t> rows_;  // where a transform leaves each frequency
};

}  // namespace plumetta
