// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "core/work_crew.h"
#include "dsp/fast_transform.h"

namespace plumetta {

// Convolves interleaved samples with a kernel in place, by overlap-save: blocks of the signal are multiplied
// with the kernel's transform. A kernel is real, so every transform carries two blocks (or channels), one in
// its real and one in its imaginary part. Blocks are read, transformed on all cores, and written back in
// rounds; only the calling thread touches the samples.
class BlockConvolver {
 public:
  // y[n] = sum of kernel[k] x[n - kernel.size() / 2 + k]. Throws std::bad_alloc.
  BlockConvolver(const std::vector<double>& kernel, int channels);

  // False when `between` has stopped it; what was done by then stays.
  bool process(float* samples, int64_t frames, const std::function<bool(double)>& between);

 private:
  // One transform's worth of signal.
  struct Pair {
    std::vector<double> re, im;
  };

  void readRound(const float* samples, int64_t frames, int64_t start);
  void readLane(const float* samples, int64_t frames, int64_t start, int channel, std::vector<double>& lane);
  void writeRound(float* samples, int64_t end, int64_t start) const;
  void keepHistory(const float* samples, int64_t end);
  void convolve(Pair& pair, FastTransform::Scratch& scratch) const;

  int taps_;
  int before_;  // input frames ahead of the first output that a block reads
  int channels_;
  FastTransform transform_;
  int blockFrames_;
  int blocks_;  // in a round
  std::vector<double> kernelRe_, kernelIm_;
  std::vector<Pair> pairs_;
  std::vector<float> history_;  // the last `before_` input frames that have been written over
  WorkCrew crew_;
  std::vector<FastTransform::Scratch> scratches_;
};

}  // namespace plumetta
