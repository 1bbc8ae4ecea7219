// SPDX-License-Identifier: GPL-3.0-or-later
// The five filters: whole file, in place.
#include <cfloat>
#include <climits>
#include <cmath>
#include <numbers>

#include "doc/command_groups.h"
#include "doc/long_work.h"
#include "dsp/channel_scan.h"
#include "dsp/fir_filter.h"
#include "dsp/moving_average.h"
#include "dsp/recursive_filters.h"
#include "dsp/sample_loops.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr const char* kUnstable = "With these settings the filter is unstable: nothing was changed.";
constexpr double kSmallestPositive = DBL_MIN;

bool isFinite(CWave& wave) {
  bool finite = true;
  const auto channels = static_cast<size_t>(wave.channels());
  forPieces(wave, {0, wave.frames() - 1}, [&](const float* samples, size_t frames) {
    finite = finite && allFinite(samples, frames * channels);
  });
  return finite;
}

// Runs a filter with progress. What was cancelled, or has run away to infinity, is taken back.
template <class Filter>
std::optional<Refusal> filterWave(CommandCall& call, const char* title, Filter filter) {
  CWave& wave = call.doc.wave();
  LongWork work(call.doc.prompter(), title);
  const WaveReports reports(wave, work);
  filter(wave);
  call.samplesTouched = true;
  if (work.cancelled()) return Refusal{};
  if (!isFinite(wave)) return Refusal{kUnstable};
  return std::nullopt;
}

double inverseRate(const CommandCall& call) { return 1.0 / call.doc.wave().sampleRate(); }

double decibels(double gain) { return 20.0 * std::log10(gain); }

// ---- Moving average -------------------------------------------------------------------------------------

std::optional<Refusal> runMovingAverage(CommandCall& call) {
  return filterWave(call, "Moving average",
                    [&](CWave& wave) { movingAverage(wave, static_cast<int32_t>(call.integer(0))); });
}

// A comb: sin(pi f M) / (M sin(pi f)).
double movingAverageDb(const CommandCall& call, double hz) {
  const double half = std::numbers::pi * hz * inverseRate(call);
  const auto length = static_cast<double>(call.integer(0));
  return decibels(half == 0.0 ? 1.0 : std::fabs(std::sin(half * length) / (length * std::sin(half))));
}

// ---- Recursive filters ----------------------------------------------------------------------------------

RecursiveFilter rcOf(const CommandCall& call) { return rcDesign(call.integer(0) == 0, call.real(1)); }

std::optional<Refusal> runRc(CommandCall& call) {
  return filterWave(call, "RC filter",
                    [&](CWave& wave) { rcFilter(wave, call.integer(0) == 0, call.real(1)); });
}

RecursiveFilter chebyshevOf(const CommandCall& call) {
  return chebyshevDesign(static_cast<int>(call.integer(3)), call.real(1) * inverseRate(call), call.real(2),
                         static_cast<PassType>(call.integer(0)));
}

std::optional<Refusal> checkChebyshev(CommandCall& call) {
  if (!chebyshevOf(call).usable()) return Refusal{kUnstable, true};
  return std::nullopt;
}

std::optional<Refusal> runChebyshev(CommandCall& call) {
  return filterWave(call, "Chebyshev filter", [&](CWave& wave) {
    chebyshevFilter(wave, static_cast<int>(call.integer(3)), call.real(1) * inverseRate(call), call.real(2),
                    static_cast<PassType>(call.integer(0)));
  });
}

RecursiveFilter bandOf(const CommandCall& call) {
  return bandDesign(call.real(1) * inverseRate(call), call.real(2) / 100.0, call.integer(0) != 0);
}

std::optional<Refusal> checkBand(CommandCall& call) {
  if (!bandOf(call).usable()) return Refusal{kUnstable, true};
  return std::nullopt;
}

std::optional<Refusal> runBand(CommandCall& call) {
  return filterWave(call, "Band filter", [&](CWave& wave) {
    bandFilter(wave, call.real(1) * inverseRate(call), call.real(2) / 100.0, call.integer(0) != 0);
  });
}

template <RecursiveFilter (*design)(const CommandCall&)>
double recursiveDb(const CommandCall& call, double hz) {
  return decibels(design(call).gainAt(hz * inverseRate(call)));
}

// ---- High performance filter ----------------------------------------------------------------------------

FirFilter firOf(const CommandCall& call) {
  FirFilter filter;
  filter.setKernelLength(static_cast<int32_t>(call.integer(2)));
  filter.setSampleRate(call.doc.wave().sampleRate());
  filter.setCutoff(call.real(1));
  filter.setChannels(call.doc.wave().channels());
  filter.setType(static_cast<uint32_t>(call.integer(0)));
  filter.setWindow(WindowKind::blackmanHarris);
  return filter;
}

std::optional<Refusal> runFir(CommandCall& call) {
  return filterWave(call, "High performance filter", [&](CWave& wave) {
    firOf(call).process(wave.samples(), wave.frames(), [&](double done) { return wave.nextTurn(done); });
  });
}

double firDb(const CommandCall& call, double hz) {
  // Some milliseconds for each frequency; a longer kernel has no picture.
  constexpr int64_t kMostTaps = int64_t{1} << 16;
  if (call.integer(2) > kMostTaps) return std::nan("");
  return decibels(gainOfKernel(firOf(call).kernel(), hz * inverseRate(call)));
}

// ---- Rows -----------------------------------------------------------------------------------------------

constexpr const char* kPassWords = "lowpass|highpass";
constexpr const char* kBandWords = "reject|pass";

std::vector<ParameterChoice> passTypes(const CPlumettaDoc&) { return {{0, "Low-pass"}, {1, "High-pass"}}; }
std::vector<ParameterChoice> bandTypes(const CPlumettaDoc&) { return {{1, "Band-pass"}, {0, "Band-reject"}}; }

Parameter typeParameter(const char* words, int64_t fallback,
                        std::vector<ParameterChoice> (*choices)(const CPlumettaDoc&)) {
  Parameter type{"type", "Type", "", ParameterType::integer, true, fallback, 0, 1, "", "Type", choices};
  type.words = words;
  return type;
}

Parameter number(const char* label, const char* unit, double fallback, double minimum, double maximum,
                 const char* message) {
  return {label, label, unit, ParameterType::real, true, fallback, minimum, maximum, message};
}

Parameter wholeNumber(const char* label, const char* unit, int64_t fallback, double minimum, double maximum,
                      const char* message) {
  return {label, label, unit, ParameterType::integer, true, fallback, minimum, maximum, message};
}

Parameter frequency(double minimum, double maximum) {
  return number("Frequency", "Hz", 1000.0, minimum, maximum, "Frequency error");
}

}  // namespace

std::vector<Command> filterCommands() {
  constexpr auto wholeFile = undoAs<UndoKind::wholeFile>;
  // clang-format off
  return {
      {"moving-average", "&Moving average", "", Menu::filter,
       {wholeNumber("Sample Number", "frames", 30, INT_MIN, INT_MAX, "The number of frames is too large")},
       nullptr, wholeFile, Lock::turns, runMovingAverage,
       [](CommandCall&) -> std::string { return "Moving average filter"; }, Changes::samples, 0,
       "Moving Average Filter", movingAverageDb},
      {"rc", "&RC filter", "", Menu::filter,
       {typeParameter(kPassWords, 0, passTypes), number("Constant", "", 0.5, 0, 1, "Constant error")},
       nullptr, wholeFile, Lock::turns, runRc,
       [](CommandCall&) -> std::string { return "RC Filter effect"; }, Changes::samples, 0, "RC Filter",
       recursiveDb<rcOf>},
      {"chebyshev", "&Chebyshev filter", "", Menu::filter,
       {typeParameter(kPassWords, 0, passTypes), frequency(0, 100000),
        number("Ripple", "%", 0.5, 0, 1, "Ripple error"),
        wholeNumber("Pole", "", 4, 0, kMostPoles, "Pole error")},
       checkChebyshev, wholeFile, Lock::turns, runChebyshev,
       [](CommandCall&) -> std::string { return "Chebyshev Filter effect"; }, Changes::samples, 0,
       "Chebyshev Filter", recursiveDb<chebyshevOf>},
      {"band", "&Band pass filter", "", Menu::filter,
       {typeParameter(kBandWords, 1, bandTypes), frequency(0, DBL_MAX),
        number("Bandwidth", "%", 0.5, 0, DBL_MAX, "Bandwidth error")},
       checkBand, wholeFile, Lock::turns, runBand,
       // The name of the filter below, and kept so.
       [](CommandCall&) -> std::string { return "High performance filter effect"; }, Changes::samples, 0,
       "Band Pass Filter", recursiveDb<bandOf>},
      {"fir", "&High performance filter", "", Menu::filter,
       {typeParameter(kPassWords, 0, passTypes), frequency(kSmallestPositive, DBL_MAX),
        wholeNumber("Precision", "taps", 100, INT_MIN, INT_MAX, "The precision is too large")},
       nullptr, wholeFile, Lock::turns, runFir,
       [](CommandCall&) -> std::string { return "High performance filter effect"; }, Changes::samples, 0,
       "High Perf Filter", firDb},
  };
  // clang-format on
}

}  // namespace plumetta
