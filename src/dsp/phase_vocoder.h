// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "core/wave.h"
#include "dsp/lane_transform.h"

namespace plumetta {

struct VocoderSettings {
  int size = 512;      // samples of a frame: a power of two from kSmallestFrame to kLargestFrame
  int overlap = 32;    // frames that cover a sample: from 1 to size
  double pitch = 1.2;  // factor of every frequency, above 0

  static constexpr int kSmallestFrame = 16;
  static constexpr int kLargestFrame = 8192;
  bool valid() const;
};

// Shifts the pitch of one channel and keeps its duration: from how far the phase of each bin advances between
// two frames follows its true frequency; magnitudes move to the bin of the new one, whose phase then advances
// accordingly (J. L. Flanagan and R. M. Golden, Phase Vocoder, Bell System Technical Journal 45, 1966; M.
// Dolson, The Phase Vocoder: A Tutorial, Computer Music Journal 10, 1986). The output lags by size - hop
// samples. Streams: frames go through the transform sixteen at a time, two to a lane.
class PhaseVocoder {
 public:
  // For valid settings. Throws std::bad_alloc.
  explicit PhaseVocoder(const VocoderSettings& settings);

  // What `process` takes at a time, but for the last time: a multiple of this many samples.
  int64_t granule() const { return int64_t{kFrames} * hop_; }
  // Replaces the next `count` samples of the channel, `stride` floats apart.
  void process(float* samples, int64_t count, int64_t stride);

 private:
  static constexpr int kFrames = 2 * static_cast<int>(LaneTransform::kLanes);

  void takeInput(const float* samples, int64_t count, int64_t stride);
  void analyse();
  void shift();
  void synthesise();
  void giveOutput(float* samples, int64_t count, int64_t stride);
  double* row(std::vector<double>& values, int bin) const { return values.data() + int64_t{bin} * kFrames; }

  VocoderSettings settings_;
  int hop_;
  int bins_;  // size / 2 + 1
  LaneTransform transform_;
  std::vector<double> window_;
  std::vector<double> input_;    // the samples that the frames of one call cover
  std::vector<double> output_;   // overlap-added frames
  std::vector<double> re_, im_;  // the lanes
  // A row a bin, kFrames values each, in the order of the frames.
  std::vector<double> rowRe_, rowIm_, magnitude_, turns_;
  std::vector<double> newMagnitude_, newAdvance_, loudest_;
  std::vector<double> lastTurns_, sumTurns_;  // a value a bin
};

// Shifts every channel of the buffer. Works on all cores, reports progress between pieces. False for settings
// that aren't valid, an empty buffer, no memory, or when it was stopped half-way.
bool shiftPitch(CWave& wave, const VocoderSettings& settings);

}  // namespace plumetta
