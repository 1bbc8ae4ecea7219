// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/resample.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

#include "core/cpu_variants.h"
#include "core/work_crew.h"
#include "dsp/fir_filter.h"
#include "dsp/sinc_weights.h"

namespace plumetta {
namespace {

constexpr int64_t kBlockFrames = 8192;
constexpr double kAntiAliasShare = 0.98;  // of half the target rate

struct Source {
  const float* samples;
  int64_t frames;
  int channels;
};

// Computes the output frames from `first` to before `end`, of all channels. Called by several workers at a
// time, each for frames of its own.
class Engine {
 public:
  virtual ~Engine() = default;
  virtual void run(int64_t first, int64_t end, float* output, int worker) = 0;
};

// ---- Polynomials ----------------------------------------------------------------------------------------

template <class Kernel>
class PolynomialEngine : public Engine {
 public:
  PolynomialEngine(const Source& source, double step) : source_(source), step_(step) {}

  void run(int64_t first, int64_t end, float* output, int) override {
    const int64_t inside = std::clamp(insideBefore(), first, end);
    if (source_.channels == 2) {
      runInside<2>(first, inside, output);
    } else {
      runInside<0>(first, inside, output);
    }
    for (int64_t j = inside; j < end; ++j) {
      for (int c = 0; c < source_.channels; ++c)
        output[(j - first) * source_.channels + c] = valueAtEnd(j, c);
    }
    // On the way to a lower rate the first frame is not touched.
    if (first == 0 && step_ > 1.0) std::copy_n(source_.samples, source_.channels, output);
  }

 private:
  struct Position {
    int64_t frame;
    double fraction;
  };
  Position positionOf(int64_t j) const {
    const double position = static_cast<double>(j) * step_;
    const auto frame = static_cast<int64_t>(position);
    return {frame, position - static_cast<double>(frame)};
  }

  // The first output frame whose points may not all lie in the source; a little too early does no harm.
  int64_t insideBefore() const {
    return static_cast<int64_t>(static_cast<double>(source_.frames - Kernel::kPoints) / step_) - 1;
  }

  // `fixedChannels` 0 stands for any number.
  template <int fixedChannels>
  void runInside(int64_t first, int64_t end, float* output) const {
    const int channels = fixedChannels > 0 ? fixedChannels : source_.channels;
    for (int64_t j = first; j < end; ++j) {
      const auto [frame, t] = positionOf(j);
      const float* x = source_.samples + frame * channels;
      for (int c = 0; c < channels; ++c, ++x) {
        double points[Kernel::kPoints];
        for (int k = 0; k < Kernel::kPoints; ++k) points[k] = x[k * channels];
        *output++ = static_cast<float>(Kernel::at(points, t));
      }
    }
  }

  // Points beyond the last frame count as 0.
  float valueAtEnd(int64_t j, int channel) const {
    const auto [frame, t] = positionOf(j);
    double points[Kernel::kPoints];
    for (int64_t k = 0; k < Kernel::kPoints; ++k) {
      const bool there = frame + k < source_.frames;
      points[k] = there ? source_.samples[(frame + k) * source_.channels + channel] : 0.0;
    }
    return static_cast<float>(Kernel::at(points, t));
  }

  Source source_;
  double step_;
};

std::unique_ptr<Engine> polynomialEngine(const Source& source, double step,
                                         const ResampleSettings& settings) {
  if (!settings.interpolate) return std::make_unique<PolynomialEngine<NearestLowerKernel>>(source, step);
  switch (static_cast<InterpolationKernel>(settings.kernel)) {
    case InterpolationKernel::linear:
      return std::make_unique<PolynomialEngine<LinearKernel>>(source, step);
    case InterpolationKernel::cubic:
      return std::make_unique<PolynomialEngine<CubicKernel>>(source, step);
    case InterpolationKernel::quadratic:
      return std::make_unique<PolynomialEngine<QuadraticKernel>>(source, step);
    case InterpolationKernel::cubicThroughFour:
      return std::make_unique<PolynomialEngine<CubicThroughFourKernel>>(source, step);
    case InterpolationKernel::osculatingSix:
      return std::make_unique<PolynomialEngine<OsculatingSixKernel>>(source, step);
    case InterpolationKernel::lagrangeSix:
      return std::make_unique<PolynomialEngine<LagrangeSixKernel>>(source, step);
    case InterpolationKernel::bandLimited:
      break;
  }
  return nullptr;
}

// ---- Windowed sinc --------------------------------------------------------------------------------------

constexpr size_t kTaps = BandLimitedWeights::kTaps;
// Eight neighbours as the compilers' vector extension has them.
using Eight [[gnu::vector_size(8 * sizeof(float)), gnu::aligned(alignof(float)), gnu::may_alias]] = float;
constexpr size_t kVectors = kTaps / 8;

PLUMETTA_WIDE_VECTORS float dotProduct(const float* weights, const float* samples) {
  const Eight* w = reinterpret_cast<const Eight*>(weights);
  const Eight* x = reinterpret_cast<const Eight*>(samples);
  constexpr size_t kSums = 5;  // a divisor of the vectors; additions in one sum have to wait for each other
  Eight sums[kSums] = {};
  for (size_t i = 0; i < kVectors; i += kSums) {
    for (size_t s = 0; s < kSums; ++s) sums[s] += w[i + s] * x[i + s];
  }
  const Eight all = (sums[0] + sums[1]) + (sums[2] + sums[3]) + sums[4];
  return ((all[0] + all[4]) + (all[1] + all[5])) + ((all[2] + all[6]) + (all[3] + all[7]));
}

class BandLimitedEngine : public Engine {
 public:
  BandLimitedEngine(const Source& source, const BandLimitedWeights& weights, int workers)
      : source_(source), workers_(static_cast<size_t>(workers), Worker{weights, {}}) {}

  void run(int64_t first, int64_t end, float* output, int worker) override {
    auto& [weights, window] = workers_[static_cast<size_t>(worker)];
    const int64_t from = weights.frameOf(first) - int64_t{kTaps / 2};
    const int64_t length = weights.frameOf(end - 1) + int64_t{kTaps / 2} - from;
    window.resize(static_cast<size_t>(length * source_.channels));
    for (int c = 0; c < source_.channels; ++c) readWindow(from, length, c, window.data() + c * length);
    for (int64_t j = first; j < end; ++j) {
      const float* x = window.data() + (weights.frameOf(j) - int64_t{kTaps / 2} - from);
      const float* taps = weights.weightsOf(j);
      for (int c = 0; c < source_.channels; ++c) *output++ = dotProduct(taps, x + c * length);
    }
  }

 private:
  struct Worker {
    BandLimitedWeights weights;
    std::vector<float> window;  // channel after channel
  };

  // One channel from a frame on, silence where there is none.
  void readWindow(int64_t from, int64_t length, int channel, float* window) const {
    for (int64_t i = 0; i < length; ++i) {
      const int64_t frame = from + i;
      const bool there = frame >= 0 && frame < source_.frames;
      window[i] = there ? source_.samples[frame * source_.channels + channel] : 0.0f;
    }
  }

  Source source_;
  std::vector<Worker> workers_;
};

// ---------------------------------------------------------------------------------------------------------

bool runAll(Engine& engine, WorkCrew& crew, int64_t frames, int channels, float* output,
            const WaveProgress& progress) {
  const int64_t roundFrames = kBlockFrames * 4 * crew.size();
  for (int64_t start = 0; start < frames; start += roundFrames) {
    const int64_t end = std::min(start + roundFrames, frames);
    const auto blocks = static_cast<int>((end - start + kBlockFrames - 1) / kBlockFrames);
    crew.run(blocks, [&](int block, int worker) {
      const int64_t first = start + block * kBlockFrames;
      engine.run(first, std::min(first + kBlockFrames, end), output + first * channels, worker);
    });
    if (!progress.report(static_cast<float>(static_cast<double>(end) / static_cast<double>(frames))))
      return false;
  }
  return true;
}

}  // namespace

int64_t resampledFrames(int32_t frames, double rate, double targetRate) {
  const double exact = frames / (rate / targetRate);
  if (!(exact <= kMaxFrames)) return int64_t{kMaxFrames} + 1;
  return std::max<int64_t>(static_cast<int64_t>(exact), frames > 0 ? 1 : 0);
}

std::optional<ResampledBlock> resampled(const float* samples, int32_t frames, int channels, double rate,
                                        const ResampleSettings& settings, const WaveProgress& progress) {
  if (samples == nullptr || frames < 1 || !(settings.rate > 0.0)) return std::nullopt;
  const int64_t length = resampledFrames(frames, rate, settings.rate);
  if (length > kMaxFrames) return std::nullopt;
  ResampledBlock block;
  if (!block.samples.resize(static_cast<size_t>(length) * static_cast<size_t>(channels) * sizeof(float))) {
    return std::nullopt;
  }
  block.frames = static_cast<int32_t>(length);
  block.rate = settings.rate;
  try {
    WorkCrew crew;
    const Source source{samples, frames, channels};
    const bool sinc =
        settings.interpolate && settings.kernel == static_cast<int>(InterpolationKernel::bandLimited);
    std::unique_ptr<Engine> engine;
    if (!sinc) {
      engine = polynomialEngine(source, rate / settings.rate, settings);
    } else if (settings.rate < rate) {
      engine =
          std::make_unique<BandLimitedEngine>(source, BandLimitedWeights(rate, settings.rate), crew.size());
    }
    if (!engine) return std::nullopt;
    if (!runAll(*engine, crew, length, channels, static_cast<float*>(block.samples.data()), progress)) {
      return std::nullopt;
    }
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
  return block;
}

void adopt(CWave& wave, ResampledBlock& block) {
  const double ratio = wave.sampleRate() / block.rate;
  int channels = wave.channels();
  wave.exchangeBlock(block.samples, channels, block.frames);
  wave.setSampleRate(static_cast<uint32_t>(std::llround(block.rate)));
  wave.loops.scale(ratio);
  wave.markers.scale(ratio);
  wave.loops.clamp(wave.frames() - 1);
  wave.markers.clamp(wave.frames() - 1);
  if (!wave.envelope.active()) return;
  wave.envelope.setLengthField(wave.frames());
  wave.envelope.scale(ratio);
}

bool resample(CWave& wave, const ResampleSettings& settings) {
  if (settings.rate == wave.sampleRate()) return true;
  auto block =
      resampled(wave.samples(), wave.frames(), wave.channels(), wave.sampleRate(), settings, wave.progress);
  if (!block) return false;
  adopt(wave, *block);
  return true;
}

bool antiAlias(float* samples, int32_t frames, int channels, double rate, double targetRate, int quality,
               const WaveProgress& progress) {
  FirFilter filter;
  filter.setKernelLength(quality + 1);
  filter.setSampleRate(rate);
  filter.setCutoff(targetRate * 0.5 * kAntiAliasShare);
  filter.setChannels(channels);
  filter.setWindow(WindowKind::blackmanHarris);
  return filter.process(samples, frames,
                        [&](double done) { return progress.report(static_cast<float>(done)); }) != 1;
}

double rateOfPitch(double rate, int64_t semitones, int64_t cents) {
  constexpr double kSemitone = 1.0594630943592953;  // 2^(1/12)
  constexpr double kCent = 1.0005777895065548;      // 2^(1/1200)
  for (; semitones > 0; --semitones) rate /= kSemitone;
  for (; semitones < 0; ++semitones) rate *= kSemitone;
  for (; cents > 0; --cents) rate /= kCent;
  for (; cents < 0; ++cents) rate *= kCent;
  return rate;
}

}  // namespace plumetta
