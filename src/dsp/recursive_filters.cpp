// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/recursive_filters.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

constexpr int64_t kChunkFrames = 4096;
// Far below anything audible: a decaying recursion ends here, before it reaches the slow denormal numbers.
constexpr double kNothing = 1e-30;

PLUMETTA_WIDE_VECTORS
void sumForward(const double* __restrict x, double* __restrict sums, int64_t count, const double* forward,
                int poles) {
  for (int64_t n = 0; n < count; ++n) sums[n] = forward[0] * x[n];
  for (int k = 1; k <= poles; ++k) {
    const double factor = forward[k];
    for (int64_t n = 0; n < count; ++n) sums[n] += factor * x[n + k];
  }
}

// Adds what earlier outputs give; the newest comes last, since everything else can be had before it is known.
template <int poles>
void addFeedback(double* y, int64_t count, const double* feedback) {
  for (int64_t n = 0; n < count; ++n) {
    double sum = y[n];
    for (int k = poles; k >= 1; --k) sum += feedback[k] * y[n - k];
    y[n] = sum;
  }
}

void addFeedback(double* y, int64_t count, const RecursiveFilter& filter) {
  const double* feedback = filter.feedback.data();
  switch (filter.poles) {
    case 2:
      return addFeedback<2>(y, count, feedback);
    case 4:
      return addFeedback<4>(y, count, feedback);
    case 6:
      return addFeedback<6>(y, count, feedback);
    case 8:
      return addFeedback<8>(y, count, feedback);
    default:
      return addFeedback<kMostPoles>(y, count, feedback);  // the missing factors are 0
  }
}

// One channel's way through the recursion, chunk after chunk.
class ChannelRun {
 public:
  ChannelRun(const RecursiveFilter& filter, CWave& wave, int channel)
      : filter_(filter),
        stride_(wave.channels()),
        samples_(wave.samples() + channel),
        frames_(wave.frames()),
        x_(kChunkFrames + kMostPoles),
        y_(kChunkFrames + kMostPoles) {}

  // Sets the outputs before frame `first` from what stands in the buffer.
  void startAt(int64_t first) {
    for (int64_t k = 1; k <= std::min<int64_t>(first, kMostPoles); ++k) {
      outputs()[-k] = samples_[(first - k) * stride_];
    }
  }

  // Filters `count` frames from `first` on, at most a chunk.
  void run(int64_t first, int64_t count) {
    const int64_t wanted = count + filter_.poles;
    const int64_t available = std::clamp<int64_t>(frames_ - first, 0, wanted);
    const float* source = samples_ + first * stride_;
    for (int64_t i = 0; i < available; ++i) x_[static_cast<size_t>(i)] = source[i * stride_];
    std::fill(x_.begin() + available, x_.begin() + wanted, 0.0);
    double* y = outputs();
    sumForward(x_.data(), y, count, filter_.forward.data(), filter_.poles);
    addFeedback(y, count, filter_);
    float* target = samples_ + first * stride_;
    for (int64_t i = 0; i < count; ++i) target[i * stride_] = static_cast<float>(y[i]);
    keepLast(count);
  }

 private:
  double* outputs() { return y_.data() + kMostPoles; }

  void keepLast(int64_t count) {
    std::copy_n(y_.begin() + count, kMostPoles, y_.begin());
    const auto last = y_.begin() + kMostPoles;
    const bool over = std::all_of(y_.begin(), last, [](double y) { return std::fabs(y) < kNothing; });
    if (over) std::fill(y_.begin(), last, 0.0);
  }

  const RecursiveFilter& filter_;
  int64_t stride_;
  float* samples_;
  int64_t frames_;
  std::vector<double> x_, y_;  // y_ begins with the outputs before the chunk
};

// Filters the frames from `first` to before `end` of every channel.
bool runRecursion(CWave& wave, const RecursiveFilter& filter, int64_t first, int64_t end) {
  if (first >= end) return true;
  std::vector<ChannelRun> channels;
  for (int c = 0; c < wave.channels(); ++c) {
    channels.emplace_back(filter, wave, c);
    channels.back().startAt(first);
  }
  for (int64_t frame = first; frame < end; frame += kChunkFrames) {
    const int64_t count = std::min(kChunkFrames, end - frame);
    for (ChannelRun& channel : channels) channel.run(frame, count);
    if (!wave.nextTurn(static_cast<double>(frame + count) / static_cast<double>(end))) return false;
  }
  return true;
}

bool runBetweenEnds(CWave& wave, const RecursiveFilter& filter) {
  if (wave.frames() == 0) return false;
  return runRecursion(wave, filter, 2, int64_t{wave.frames()} - 2);
}

// The numbers a two-pole section of the Chebyshev design consists of.
struct Section {
  double a0, a1, a2, b1, b2;
};

Section chebyshevSection(int pair, int poles, double cutoff, double ripplePercent, PassType type) {
  constexpr double kPi = std::numbers::pi;
  const double angle = kPi / (2.0 * poles) + (pair - 1) * kPi / poles;
  double rp = -std::cos(angle);
  double ip = std::sin(angle);
  if (ripplePercent != 0.0) {
    const double es = std::sqrt(std::pow(100.0 / (100.0 - ripplePercent), 2.0) - 1.0);
    const double vx = std::log(1.0 / es + std::sqrt(1.0 / (es * es) + 1.0)) / poles;
    const double kx = std::cosh(std::log(1.0 / es + std::sqrt(1.0 / (es * es) - 1.0)) / poles);
    rp *= std::sinh(vx) / kx;
    ip *= std::cosh(vx) / kx;
  }
  const float t = static_cast<float>(2.0 * std::tan(0.5));  // a float all the way, and kept one
  const double w = 2.0 * kPi * cutoff;
  const double m = rp * rp + ip * ip;
  const double d = 4.0 - 4.0 * rp * t + m * t * t;
  const double x0 = t * t / d;
  const double x1 = 2.0 * t * t / d;
  const double x2 = x0;
  const double y1 = (8.0 - 2.0 * m * t * t) / d;
  const double y2 = (-4.0 - 4.0 * rp * t - m * t * t) / d;
  const double k = type == PassType::high ? -std::cos(w / 2.0 + 0.5) / std::cos(w / 2.0 - 0.5)
                                          : std::sin(0.5 - w / 2.0) / std::sin(0.5 + w / 2.0);
  const double e = 1.0 + y1 * k - y2 * k * k;
  Section section{(x0 - x1 * k + x2 * k * k) / e, (-2.0 * x0 * k + x1 + x1 * k * k - 2.0 * x2 * k) / e,
                  (x0 * k * k - x1 * k + x2) / e, (2.0 * k + y1 + y1 * k * k - 2.0 * y2 * k) / e,
                  (-k * k - y1 * k + y2) / e};
  if (type == PassType::high) {
    section.a1 = -section.a1;
    section.b1 = -section.b1;
  }
  return section;
}

// Both poles inside the unit circle, and not as close to it as rounding can tell.
bool isStable(const Section& s) {
  constexpr double kMargin = 1e-12;
  return std::fabs(s.b2) < 1.0 - kMargin && std::fabs(s.b1) < 1.0 - s.b2 - kMargin;
}

constexpr size_t kDesignEntries = 22;
using DesignArray = std::array<double, kDesignEntries>;

void cascade(DesignArray& a, DesignArray& b, const Section& s) {
  const DesignArray ta = a;
  const DesignArray tb = b;
  for (size_t i = 2; i < kDesignEntries; ++i) {
    a[i] = s.a0 * ta[i] + s.a1 * ta[i - 1] + s.a2 * ta[i - 2];
    b[i] = tb[i] - s.b1 * tb[i - 1] - s.b2 * tb[i - 2];
  }
}

}  // namespace

bool RecursiveFilter::usable() const {
  const auto isFinite = [](double value) { return std::isfinite(value); };
  return stable && std::ranges::all_of(forward, isFinite) && std::ranges::all_of(feedback, isFinite);
}

double RecursiveFilter::gainAt(double frequency) const {
  std::complex<double> numerator = 0.0;
  std::complex<double> denominator = 1.0;
  for (size_t k = 0; k < forward.size(); ++k) {
    const double angle = 2.0 * std::numbers::pi * frequency * static_cast<double>(k);
    numerator += std::polar(forward[k], angle);
    denominator -= std::polar(feedback[k], -angle);
  }
  return std::abs(numerator) / std::abs(denominator);
}

RecursiveFilter rcDesign(bool lowPass, double x) {
  if (lowPass) return {2, {0.0, 0.0, 1.0 - x}, {0.0, x}};
  return {2, {0.0, -(1.0 + x) / 2.0, (1.0 + x) / 2.0}, {0.0, x}};
}

RecursiveFilter bandDesign(double centre, double bandwidth, bool bandPass) {
  const double r = 1.0 - 3.0 * bandwidth;
  const double c = std::cos(2.0 * std::numbers::pi * centre);
  const double k = (1.0 - 2.0 * r * c + r * r) / (2.0 - 2.0 * c);
  const double a0 = bandPass ? 1.0 - k : k;
  const double a1 = bandPass ? 2.0 * (k - r) * c : -2.0 * k * c;
  const double a2 = bandPass ? r * r - k : k;
  return {2, {a2, a1, a0}, {0.0, 2.0 * r * c, -r * r}, r * r <= 1.0};
}

RecursiveFilter chebyshevDesign(int poles, double cutoff, double ripplePercent, PassType type) {
  DesignArray a{};
  DesignArray b{};
  a[2] = b[2] = 1.0;
  RecursiveFilter filter;
  for (int pair = 1; pair <= poles / 2; ++pair) {
    const Section section = chebyshevSection(pair, poles, cutoff, ripplePercent, type);
    filter.stable = filter.stable && isStable(section);
    cascade(a, b, section);
  }
  b[2] = 0.0;
  double sumA = 0.0;
  double sumB = 0.0;
  for (size_t i = 2; i < kDesignEntries; ++i) {
    const double sign = type == PassType::high && i % 2 == 1 ? -1.0 : 1.0;
    sumA += sign * a[i];
    sumB -= sign * b[i];
  }
  const double gain = sumA / (1.0 - sumB);
  filter.poles = poles;
  for (size_t k = 0; k <= static_cast<size_t>(std::max(poles, 0)); ++k) {
    filter.forward[k] = a[k + 2] / gain;
    filter.feedback[k] = -b[k + 2];
  }
  return filter;
}

bool rcFilter(CWave& wave, bool lowPass, double constant) {
  if (!(constant >= 0.0 && constant <= 1.0)) return false;
  return runBetweenEnds(wave, rcDesign(lowPass, constant));
}

bool bandFilter(CWave& wave, double centre, double bandwidth, bool bandPass) {
  return runBetweenEnds(wave, bandDesign(centre, bandwidth, bandPass));
}

bool chebyshevFilter(CWave& wave, int poles, double cutoff, double ripplePercent, PassType type) {
  if (poles < 0 || poles > kMostPoles || wave.frames() == 0) return false;
  const RecursiveFilter filter = chebyshevDesign(poles, cutoff, ripplePercent, type);
  const int64_t first = std::min<int64_t>(poles, wave.frames());
  std::fill_n(wave.samples(), static_cast<size_t>(first) * static_cast<size_t>(wave.channels()), 0.0f);
  return runRecursion(wave, filter, first, wave.frames());
}

}  // namespace plumetta
