// SPDX-License-Identifier: GPL-3.0-or-later
// Resampling and pitch: the new samples are made beside the document, which changes in one moment at the end.
#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>

#include "doc/command_groups.h"
#include "doc/long_work.h"
#include "dsp/amplitude.h"
#include "dsp/channel_scan.h"
#include "dsp/phase_vocoder.h"
#include "dsp/resample.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr double kSmallestPositive = DBL_MIN;
constexpr const char* kNotFinite = "The samples contain values that are not finite: nothing was changed.";
constexpr const char* kRateError = "Sample rate error!";
constexpr double kHighestRate = 4294967295.0;  // what the rate's 32-bit field holds

// ---- Resampling -----------------------------------------------------------------------------------------

enum ResampleArgument : size_t { kRate, kType, kInterpolation, kFilter, kQuality, kJustFrequency };

int roundedRate(const CommandCall& call) { return static_cast<int>(std::llround(call.real(kRate))); }

std::optional<Refusal> checkRate(CommandCall& call) {
  const double rate = call.real(kRate);
  if (std::llround(rate) < 1) return Refusal{kRateError, true};
  const uint32_t present = call.doc.wave().sampleRate();
  if (rate == present)
    return Refusal{formatted("Sampling frequency is already %d Hz", static_cast<int>(present)), true};
  return std::nullopt;
}

std::optional<Refusal> refuseLength(CommandCall& call, double rate) {
  const CWave& wave = call.doc.wave();
  if (resampledFrames(wave.frames(), wave.sampleRate(), rate) > kMaxFrames) return Refusal{kNoMemory, true};
  return std::nullopt;
}

std::optional<Refusal> checkResample(CommandCall& call) {
  if (const auto refusal = checkRate(call)) return refusal;
  const bool sinc = call.integer(kType) == static_cast<int>(InterpolationKernel::bandLimited);
  if (!sinc && call.integer(kType) > static_cast<int>(InterpolationKernel::lagrangeSix)) {
    return Refusal{"The interpolation must be 0 to 5, or 10", true};
  }
  const bool up = call.real(kRate) > call.doc.wave().sampleRate();
  if (up && sinc && call.boolean(kInterpolation)) {
    return Refusal{"Band limited is just for down sampling, not for up sampling", true};
  }
  return call.boolean(kJustFrequency) ? std::nullopt : refuseLength(call, call.real(kRate));
}

std::optional<UndoKind> resampleUndo(CommandCall& call) {
  return call.boolean(kJustFrequency) ? UndoKind::annotations : UndoKind::layout;
}

// The cursor goes to the start, the selection stays where it was in time, and the view inside the file.
void followRate(CPlumettaDoc& doc, double ratio) {
  ViewState view = doc.view();
  const auto scaled = [&](int32_t frame) { return doc.clampFrame(std::llround(frame * ratio)); };
  view.cursor = 0;
  view.selectionStart = scaled(view.selectionStart);
  view.selectionEnd = scaled(view.selectionEnd);
  if (view.firstVisibleFrame > doc.lastFrame()) view.firstVisibleFrame = 0;
  doc.setViewState(view);
}

// A copy of the samples without what lies above the band of the target rate.
bool filteredCopy(const CWave& wave, double targetRate, int quality, const WaveProgress& progress,
                  BlockMemory& copy) {
  const size_t bytes = wave.sampleCount() * sizeof(float);
  if (!copy.resize(bytes)) return false;
  std::memcpy(copy.data(), wave.samples(), bytes);
  return antiAlias(static_cast<float*>(copy.data()), wave.frames(), wave.channels(), wave.sampleRate(),
                   targetRate, quality, progress);
}

// The rate alone, which playing reads under the lock.
void relabel(CommandCall& call, double rate) {
  const AudioLockHeld held(call.doc.services().audioLock);
  call.doc.wave().setSampleRate(static_cast<uint32_t>(std::llround(rate)));
}

// Takes the new samples over, to be played at `rate`; the old ones are for undo.
void exchange(CommandCall& call, ResampledBlock block, double rate) {
  CWave& wave = call.doc.wave();
  const AudioLockHeld held(call.doc.services().audioLock);
  adopt(wave, block);
  wave.setSampleRate(static_cast<uint32_t>(std::llround(rate)));
  call.replacedSamples = std::move(block.samples);
}

std::optional<Refusal> resampleSamples(CommandCall& call, const char* title, const ResampleSettings& settings,
                                       double labelledRate, bool filter, int quality) {
  CPlumettaDoc& doc = call.doc;
  CWave& wave = doc.wave();
  if (wave.frames() == 0) {
    relabel(call, labelledRate);
    return std::nullopt;
  }
  LongWork work(doc.prompter(), title);
  BlockMemory copy;
  const float* source = wave.samples();
  if (filter && settings.rate < wave.sampleRate()) {
    if (!filteredCopy(wave, settings.rate, quality, work.progress(), copy)) {
      return Refusal{work.cancelled() ? "" : kNoMemory};
    }
    source = static_cast<const float*>(copy.data());
  }
  const double oldRate = wave.sampleRate();
  auto block = resampled(source, wave.frames(), wave.channels(), oldRate, settings, work.progress());
  if (!block) return Refusal{work.cancelled() ? "" : kNoMemory};
  exchange(call, std::move(*block), labelledRate);
  followRate(doc, settings.rate / oldRate);
  return std::nullopt;
}

std::optional<Refusal> runResample(CommandCall& call) {
  if (call.boolean(kJustFrequency)) {
    relabel(call, call.real(kRate));
    return std::nullopt;
  }
  const ResampleSettings settings{call.real(kRate), call.boolean(kInterpolation),
                                  static_cast<int>(call.integer(kType))};
  return resampleSamples(call, "Resample", settings, settings.rate, call.boolean(kFilter),
                         static_cast<int>(call.integer(kQuality)));
}

std::string resampleName(CommandCall& call) {
  return formatted(call.boolean(kJustFrequency) ? "Set sample rate to %d Hz" : "Resample to %d Hz",
                   roundedRate(call));
}

std::optional<Refusal> runSetRate(CommandCall& call) {
  relabel(call, call.real(kRate));
  return std::nullopt;
}

std::string setRateName(CommandCall& call) {
  return formatted("Set sample rate to %d Hz", roundedRate(call));
}

// ---- Pitch ----------------------------------------------------------------------------------------------

double pitchRate(const CommandCall& call) {
  return rateOfPitch(call.doc.wave().sampleRate(), call.integer(0), call.integer(1));
}

std::optional<Refusal> checkPitch(CommandCall& call) {
  call.skipped = call.integer(0) == 0 && call.integer(1) == 0;
  return call.skipped ? std::nullopt : refuseLength(call, pitchRate(call));
}

std::optional<Refusal> runPitch(CommandCall& call) {
  const ResampleSettings settings{pitchRate(call), call.boolean(2),
                                  static_cast<int>(InterpolationKernel::lagrangeSix)};
  return resampleSamples(call, "Pitch shift", settings, call.doc.wave().sampleRate(), false, 0);
}

std::string pitchName(CommandCall& call) {
  return formatted("Pitch shift %d semitone %d cent", static_cast<int>(call.integer(0)),
                   static_cast<int>(call.integer(1)));
}

VocoderSettings vocoderOf(const CommandCall& call) {
  return {static_cast<int>(call.integer(1)), static_cast<int>(call.integer(2)), call.real(0)};
}

std::optional<Refusal> checkPitchFft(CommandCall& call) {
  if (call.doc.wave().frames() == 0) return Refusal{};
  if (vocoderOf(call).valid()) return std::nullopt;
  return Refusal{"The FFT size must be a power of two from 16 to 8192, and the overlap no larger", true};
}

// Runs on a copy, normalises it, and takes its samples over.
std::optional<Refusal> runPitchFft(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  LongWork work(doc.prompter(), "Pitch shift");
  CWave copy;
  if (!copy.copyFrom(doc.wave())) return Refusal{kNoMemory};
  for (int c = 0; c < copy.channels(); ++c) {
    copy.setActive(doc.wave().isActive(c) ? ActiveOperation::on : ActiveOperation::off, c);
  }
  {
    const WaveReports reports(copy, work);
    if (!shiftPitch(copy, vocoderOf(call))) return Refusal{work.cancelled() ? "" : kNoMemory};
  }
  normalize(copy, {0, copy.frames() - 1}, 0.0);
  if (!allFinite(copy.samples(), copy.sampleCount())) return Refusal{kNotFinite};
  ResampledBlock block;
  int channels = copy.channels();
  copy.exchangeBlock(block.samples, channels, block.frames);
  block.rate = doc.wave().sampleRate();
  exchange(call, std::move(block), doc.wave().sampleRate());
  return std::nullopt;
}

std::string pitchFftName(CommandCall& call) { return formatted("Pitch shift %2.2f", call.real(0)); }

// ---- Rows -----------------------------------------------------------------------------------------------

std::vector<ParameterChoice> kernels(const CPlumettaDoc&) {
  return {{0, "Linear"},
          {1, "Cubic"},
          {2, "Quadratic"},
          {3, "Cubic through four points"},
          {4, "Six points, osculating"},
          {5, "Six points, Lagrange"},
          {10, "Band limited"}};
}

std::vector<ParameterChoice> frameSizes(const CPlumettaDoc&) {
  std::vector<ParameterChoice> sizes;
  for (int64_t size = VocoderSettings::kSmallestFrame; size <= VocoderSettings::kLargestFrame; size *= 2) {
    sizes.push_back({size, std::to_string(size)});
  }
  return sizes;
}

Parameter rateParameter() {
  return {"Frequency", "Frequency",       "Hz",         ParameterType::real, true,
          96000.0,     kSmallestPositive, kHighestRate, kRateError};
}

Parameter flag(const char* key, const char* label, bool fallback) {
  return {key, label, "", ParameterType::boolean, false, fallback, 0, 1, "", label};
}

std::vector<Parameter> resampleParameters() {
  return {rateParameter(),
          {"type", "Type", "", ParameterType::integer, false, int64_t{0}, 0, 10,
           "The interpolation must be 0 to 5, or 10", "Type", kernels},
          flag("interpolation", "Interpolation", true),
          flag("filter", "Filter", true),
          {"quality", "Quality", "", ParameterType::integer, false, int64_t{500}, 0, INT_MAX - 1,
           "The quality must not be negative", "Quality"},
          {"just-rate", "Set the rate only, keep the samples", "", ParameterType::boolean, false, false, 0, 1,
           "", "JustFrequency"}};
}

std::vector<Parameter> pitchParameters() {
  constexpr double kMostSemitones = 120;
  constexpr double kMostCents = 12000;
  return {{"Semitone", "Semitone", "", ParameterType::integer, true, int64_t{0}, -kMostSemitones,
           kMostSemitones, "The pitch must lie between -120 and 120 semitones"},
          {"Cent", "Cent", "", ParameterType::integer, true, int64_t{0}, -kMostCents, kMostCents,
           "The pitch must lie between -12000 and 12000 cents"},
          flag("interpolation", "Interpolation", true)};
}

std::vector<Parameter> pitchFftParameters() {
  constexpr double kHighestPitch = 64;
  return {
      {"Pitch", "Pitch factor", "", ParameterType::real, true, 1.2, 1 / kHighestPitch, kHighestPitch,
       "The pitch factor must lie between 1/64 and 64"},
      {"size", "FFT Size", "", ParameterType::integer, false, int64_t{512}, VocoderSettings::kSmallestFrame,
       VocoderSettings::kLargestFrame, "The FFT size must be a power of two from 16 to 8192", "FFT Size",
       frameSizes},
      {"overlap", "Overlap", "", ParameterType::integer, false, int64_t{32}, 1,
       VocoderSettings::kLargestFrame, "The overlap must lie between 1 and the FFT size", "Overloapping"}};
}

}  // namespace

std::vector<Command> resampleCommands() {
  // clang-format off
  return {
      {"resample", "&Resample", "", Menu::pitch, resampleParameters(), checkResample, resampleUndo,
       Lock::byItself, runResample, resampleName, Changes::samples, 0, "Resample"},
      {"set-rate", "", "", Menu::none, {rateParameter()}, checkRate, undoAs<UndoKind::annotations>, Lock::none,
       runSetRate, setRateName, Changes::samples},
      {"pitch", "&Pitch shift", "", Menu::pitch, pitchParameters(), checkPitch, undoAs<UndoKind::layout>,
       Lock::byItself, runPitch, pitchName, Changes::samples, 0, "Pitch Shift"},
      {"pitch-fft", "Pitch shift &FFT", "", Menu::pitch, pitchFftParameters(), checkPitchFft,
       undoAs<UndoKind::wholeFile>, Lock::byItself, runPitchFft, pitchFftName, Changes::samples, 0,
       "Pitch Shift FFT"},
  };
  // clang-format on
}

}  // namespace plumetta
