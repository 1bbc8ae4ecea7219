// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "core/wave.h"

namespace plumetta {

inline constexpr int kMostPoles = 16;

// A recursion that looks ahead instead of delaying:
//   y[n] = sum over k = 0 .. poles of forward[k] x[n + k], plus sum over k = 1 .. poles of feedback[k] y[n -
//   k].
// Designed and carried out in double precision; samples are stored as floats.
struct RecursiveFilter {
  int poles = 0;
  std::array<double, kMostPoles + 1> forward{};
  std::array<double, kMostPoles + 1> feedback{};

  bool stable = true;  // no pole outside the unit circle; Chebyshev's none on it either

  // False for settings that make no filter.
  bool usable() const;
  // At a frequency as a fraction of the sample rate; 1 for none.
  double gainAt(double frequency) const;
};

enum class PassType { low = 0, high = 1 };

// Frequencies and bandwidths are fractions of the sample rate. Formulas: S. W. Smith, The Scientist and
// Engineer's Guide to Digital Signal Processing, 1997, chapters 19 and 20.
RecursiveFilter rcDesign(bool lowPass, double constant);
RecursiveFilter bandDesign(double centre, double bandwidth, bool bandPass);
// `ripplePercent` 0 gives a Butterworth filter. An odd number of poles leaves one out.
RecursiveFilter chebyshevDesign(int poles, double cutoff, double ripplePercent, PassType type);

// All of them work on the whole buffer, every channel, in place, report progress and give turns. False, with
// nothing changed, for a constant outside 0 .. 1, more poles than kMostPoles, or an empty buffer; also when
// they were stopped half-way.

// The first two and the last two frames keep their values.
bool rcFilter(CWave& wave, bool lowPass, double constant);
bool bandFilter(CWave& wave, double centre, double bandwidth, bool bandPass);
// The first `poles` frames become 0; beyond the last frame there is silence.
bool chebyshevFilter(CWave& wave, int poles, double cutoff, double ripplePercent, PassType type);

}  // namespace plumetta
