// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/ruler_ticks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace plumetta {
namespace {

constexpr std::array kClockSteps{Step{1, 5},   Step{2, 4},    Step{5, 5},    Step{10, 5},   Step{15, 3},
                                 Step{30, 3},  Step{60, 6},   Step{120, 4},  Step{300, 5},  Step{600, 5},
                                 Step{900, 3}, Step{1800, 3}, Step{3600, 6}, Step{7200, 4}, Step{18000, 5}};

Step clockStep(double minimumSeconds) {
  if (minimumSeconds <= 0.5) return decimalStep(minimumSeconds);
  for (const Step& step : kClockSteps) {
    if (step.size >= minimumSeconds) return step;
  }
  const Step hours = decimalStep(minimumSeconds / 3600);
  return {hours.size * 3600, hours.parts};
}

std::string levelLabel(double value, bool decibels) {
  char text[32];
  if (decibels) {
    const double level = 20 * std::log10(std::abs(value));
    std::snprintf(text, sizeof text, "%.0f", level == 0 ? 0.0 : level);
  } else {
    std::snprintf(text, sizeof text, "%.4g", value);
  }
  return text;
}

double unitsPerSecond(TimeFormat format) { return format == kTimeMilliseconds ? 1000 : 1; }

// "1 234.50", rounded to nearest.
std::string formatDecimal(double value, int decimals) {
  const auto scale = static_cast<int64_t>(std::llround(std::pow(10.0, decimals)));
  const int64_t units = std::llround(std::abs(value) * static_cast<double>(scale));
  const std::string sign = value < 0 && units > 0 ? "-" : "";
  const std::string digits = std::to_string(scale + units % scale);  // a one before them keeps their zeroes
  return sign + formatCount(units / scale) + (decimals > 0 ? "." + digits.substr(1) : "");
}

}  // namespace

Step decimalStep(double minimum) {
  const double power = std::pow(10.0, std::floor(std::log10(minimum)));
  for (const Step& step : {Step{1, 5}, Step{2, 4}, Step{5, 5}}) {
    if (step.size * power >= minimum * (1 - 1e-9)) return {step.size * power, step.parts};
  }
  return {10 * power, 5};
}

TickSpacing timeTicks(double framesPerPixel, uint32_t sampleRate, double minimumPixels) {
  const double rate = std::max<uint32_t>(sampleRate, 1);
  const Step step = clockStep(framesPerPixel * minimumPixels / rate);
  const int decimals = static_cast<int>(std::ceil(-std::log10(step.size) - 1e-9));
  return {step.size * rate, step.parts, std::clamp(decimals, 0, 6)};
}

TickSpacing frameTicks(double framesPerPixel, double minimumPixels) {
  const Step step = decimalStep(std::max(framesPerPixel * minimumPixels, 1.0));
  return {step.size, step.size < 2 ? 1 : step.parts, 0};
}

TickSpacing ticksIn(TimeFormat format, double framesPerPixel, uint32_t sampleRate, double minimumPixels) {
  if (format == kTimeSamples) return frameTicks(framesPerPixel, minimumPixels);
  if (format == kTimeClock) return timeTicks(framesPerPixel, sampleRate, minimumPixels);
  const double framesPerUnit = std::max<uint32_t>(sampleRate, 1) / unitsPerSecond(format);
  const Step step = decimalStep(framesPerPixel * minimumPixels / framesPerUnit);
  const int decimals = static_cast<int>(std::ceil(-std::log10(step.size) - 1e-9));
  return {step.size * framesPerUnit, step.parts, std::clamp(decimals, 0, 6)};
}

std::string positionIn(TimeFormat format, double frame, uint32_t sampleRate, int decimals) {
  if (format == kTimeSamples) return formatCount(std::llround(frame));
  const double seconds = frame / std::max<uint32_t>(sampleRate, 1);
  if (format == kTimeClock) return formatTime(seconds, decimals < 0 ? 3 : decimals);
  if (decimals < 0) decimals = format == kTimeSeconds ? 4 : 1;
  return formatDecimal(seconds * unitsPerSecond(format), decimals);
}

std::string formatTime(double seconds, int decimals) {
  const auto scale = static_cast<int64_t>(std::llround(std::pow(10.0, decimals)));
  const int64_t units = std::llround(std::abs(seconds) * static_cast<double>(scale));
  const int64_t whole = units / scale;
  char clock[64];
  std::snprintf(clock, sizeof clock, "%s%lld:%02lld:%02lld", seconds < 0 && units > 0 ? "-" : "",
                static_cast<long long>(whole / 3600), static_cast<long long>(whole / 60 % 60),
                static_cast<long long>(whole % 60));
  if (decimals == 0) return clock;
  const std::string digits = std::to_string(scale + units % scale);  // a one before them keeps their zeroes
  return clock + ("." + digits.substr(1));
}

std::string formatCount(int64_t count) {
  std::string digits = std::to_string(std::llabs(count));
  for (auto at = static_cast<int64_t>(digits.size()) - 3; at > 0; at -= 3) {
    digits.insert(static_cast<size_t>(at), 1, ' ');
  }
  return count < 0 ? "-" + digits : digits;
}

std::vector<AmplitudeTick> amplitudeTicks(double height, double zoom, bool decibels, double minimumPixels) {
  std::vector<AmplitudeTick> ticks{{0, decibels ? "-\xE2\x88\x9E" : "0"}};
  const double pixelsPerUnit = height / 2 * zoom;
  const auto addPair = [&](double value) {
    for (const double side : {value, -value}) ticks.push_back({side, levelLabel(side, decibels)});
  };
  if (!decibels) {
    if (pixelsPerUnit <= 0) return ticks;
    const double step = decimalStep(minimumPixels / pixelsPerUnit).size;
    for (int i = 1; i * step <= 1 / zoom * (1 + 1e-9); ++i) addPair(i * step);
    return ticks;
  }
  constexpr double kHalf = 0.501187233627272;  // -6 dB
  double previous = -1;
  double top = 1;
  while (top / kHalf * zoom <= 1 + 1e-9) top /= kHalf;
  for (double value = top; value * pixelsPerUnit >= minimumPixels; value *= kHalf) {
    if (value * zoom > 1 + 1e-9) continue;
    if (previous > 0 && (previous - value) * pixelsPerUnit < minimumPixels) continue;
    addPair(value);
    previous = value;
  }
  return ticks;
}

}  // namespace plumetta
