// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/frequency_axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "doc/ruler_ticks.h"

namespace plumetta {
namespace {

// As deep as zooming goes, as a part of the whole.
constexpr double kDeepest = 1.0 / 2000;
// Below this ratio of the ends a logarithmic axis has its labels at even steps.
constexpr double kDecade = 10.0;

std::string labelOf(double hz) {
  char text[32];
  if (hz < 1000) {
    std::snprintf(text, sizeof text, "%.6g", hz);
  } else {
    std::snprintf(text, sizeof text, "%.7gk", hz / 1000);
  }
  return text;
}

std::vector<FrequencyTick> evenTicks(const FrequencyAxis& axis, double pixels, double minimumPixels) {
  // On a logarithmic axis steps are narrowest at the high end.
  const double span = axis.highHz - axis.lowHz;
  const double narrowing = axis.logarithmic ? axis.highHz * std::log(axis.highHz / axis.lowHz) / span : 1.0;
  const Step step = decimalStep(span / pixels * minimumPixels * narrowing);
  const double minor = step.size / step.parts;
  std::vector<FrequencyTick> ticks;
  for (auto i = static_cast<int64_t>(std::ceil(axis.lowHz / minor)); i * minor <= axis.highHz; ++i) {
    ticks.push_back({i * minor, i % step.parts == 0 ? labelOf(i * minor) : std::string()});
  }
  return ticks;
}

// Every whole multiple of a power of ten has a tick; labelled are 1, 2 and 5 as far as there is room.
std::vector<FrequencyTick> decadeTicks(const FrequencyAxis& axis, double pixels, double minimumPixels) {
  const double pixelsPerDecade = pixels / std::log10(axis.highHz / axis.lowHz);
  const bool all = pixelsPerDecade * std::log10(2.0) >= minimumPixels;
  std::vector<FrequencyTick> ticks;
  for (double power = std::pow(10.0, std::floor(std::log10(axis.lowHz))); power <= axis.highHz; power *= 10) {
    for (int digit = 1; digit < 10; ++digit) {
      const double hz = digit * power;
      if (hz < axis.lowHz * (1 - 1e-9) || hz > axis.highHz * (1 + 1e-9)) continue;
      const bool labelled = digit == 1 || (all && (digit == 2 || digit == 5));
      ticks.push_back({hz, labelled ? labelOf(hz) : std::string()});
    }
  }
  return ticks;
}

}  // namespace

double FrequencyAxis::fraction(double hz) const {
  if (!logarithmic) return (hz - lowHz) / (highHz - lowHz);
  return std::log(std::max(hz, 0.0) / lowHz) / std::log(highHz / lowHz);
}

double FrequencyAxis::hz(double fraction) const {
  if (!logarithmic) return lowHz + fraction * (highHz - lowHz);
  return lowHz * std::pow(highHz / lowHz, fraction);
}

FrequencyAxis FrequencyAxis::zoomed(double at, double factor, const FrequencyAxis& whole) const {
  const double low = whole.fraction(lowHz), high = whole.fraction(highHz);
  const double span = std::clamp((high - low) / factor, kDeepest, 1.0);
  const double held = low + at * (high - low);
  const double first = std::clamp(held - at * span, 0.0, 1.0 - span);
  return {whole.hz(first), whole.hz(first + span), whole.logarithmic};
}

FrequencyAxis FrequencyAxis::moved(double fractions, const FrequencyAxis& whole) const {
  const double low = whole.fraction(lowHz), span = whole.fraction(highHz) - low;
  const double first = std::clamp(low + fractions * span, 0.0, std::max(1.0 - span, 0.0));
  return {whole.hz(first), whole.hz(first + span), whole.logarithmic};
}

std::vector<FrequencyTick> frequencyTicks(const FrequencyAxis& axis, double pixels, double minimumPixels) {
  if (pixels < 1 || !(axis.highHz > axis.lowHz)) return {};
  const bool even = !axis.logarithmic || axis.highHz / axis.lowHz < kDecade;
  return even ? evenTicks(axis, pixels, minimumPixels) : decadeTicks(axis, pixels, minimumPixels);
}

}  // namespace plumetta
