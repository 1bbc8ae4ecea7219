// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "dsp/window_function.h"

namespace plumetta {

// The high performance filter: a windowed sinc (S. W. Smith, The Scientist and Engineer's Guide to Digital
// Signal Processing, 1997, chapter 16), centred, so that it delays nothing. Setters ignore what they can't
// take.
class FirFilter {
 public:
  enum Type : uint32_t { lowPass = 0, highPass = 1 };

  // Above 0 and below half the sample rate.
  void setCutoff(double hz);
  void setSampleRate(double hz);
  void setKernelLength(int32_t taps);
  void setChannels(int32_t channels);
  void setType(uint32_t type) { type_ = type; }
  void setWindow(WindowKind kind) { window_ = kind; }
  double gain = 1.0;

  // The taps, gain apart; their sum is 1 (low-pass) or 0 (high-pass).
  std::vector<double> kernel() const;

  // Told between two rounds of work how far it has come; false stops.
  using Between = std::function<bool(double fractionDone)>;
  // Filters frames × channels interleaved samples in place; beyond the ends there is silence. 0, or -1 with
  // the samples unchanged when there are fewer frames than taps, no samples, no usable kernel or no memory.
  // 1 when `between` has stopped it half-way. Works on several threads, none of which touches `samples`.
  int process(float* samples, int32_t frames, const Between& between = {}) const;

 private:
  double cutoffHz_ = 1000.0;
  double sampleRate_ = 44100.0;
  int32_t taps_ = 1000;
  int32_t channels_ = 1;
  uint32_t type_ = lowPass;
  WindowKind window_ = WindowKind::blackman;
};

// The gain of a kernel at a frequency (a fraction of the sample rate), 1 for none.
double gainOfKernel(const std::vector<double>& kernel, double frequency);

}  // namespace plumetta
