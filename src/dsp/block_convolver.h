// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "core/work_crew.h"
#include "dsp/lane_transform.h"

namespace plumetta {

// Convolves interleaved samples with a kernel in place, by overlap-save: blocks of the signal are multiplied
// with the kernel's transform. A kernel is real, so every lane carries two strips, one in its real and one in
// its imaginary part; a strip is one channel of one block. The strips of a round are read and transformed on
// all cores, then written back on all cores; meanwhile the calling thread waits, so its locks hold for the
// others.
class BlockConvolver {
 public:
  // y[n] = sum of kernel[k] x[n - kernel.size() / 2 + k]. Throws std::bad_alloc.
  BlockConvolver(const std::vector<double>& kernel, int channels);

  // False when `between` has stopped it; what was done by then stays.
  bool process(float* samples, int64_t frames, const std::function<bool(double)>& between);

 private:
  static constexpr int kStrips = 2 * static_cast<int>(LaneTransform::kLanes);  // in a group

  // What one transform of all lanes works on.
  struct Group {
    explicit Group(size_t size) : re(size * LaneTransform::kLanes), im(size * LaneTransform::kLanes) {}
    double* strip(int index) { return (index % 2 == 0 ? re : im).data() + index / 2; }

    std::vector<double> re, im;
  };
  // Where the strips of a round come from and go to.
  struct Round {
    float* samples;
    int64_t frames, start, end;
  };

  int64_t blockOf(const Round& round, int strip) const {
    return round.start + strip / channels_ * blockFrames_;
  }
  void readGroup(const Round& round, int index);
  void readStrip(const Round& round, int strip, double* target) const;
  void writeGroup(const Round& round, int index);
  void keepHistory(const Round& round);
  void convolve(Group& group) const;

  int64_t taps_;
  int64_t before_;  // input frames ahead of the first output that a block reads
  int channels_;
  LaneTransform transform_;
  int64_t blockFrames_;
  std::vector<double> kernelRe_, kernelIm_;
  WorkCrew crew_;
  std::vector<Group> groups_;
  int64_t roundFrames_;
  std::vector<float> history_;  // the last `before_` input frames that have been written over
};

}  // namespace plumetta
