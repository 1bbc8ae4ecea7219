// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace plumetta {

// A step between labels, and into how many parts small ticks divide it.
struct Step {
  double size;
  int parts;
};
// The smallest of 1, 2, 5 × a power of ten that reaches `minimum`, which is above 0.
Step decimalStep(double minimum);

// How positions are written.
enum TimeFormat { kTimeSamples = 0, kTimeSeconds = 1, kTimeMilliseconds = 2, kTimeClock = 3 };

// Regular ticks along time, in frames.
struct TickSpacing {
  double major;      // frames between labels
  int minorParts;    // small ticks divide a major step into this many
  int timeDecimals;  // decimals that labels in the format's unit need to differ
};

// Steps that people count in (1, 2, 5 and their like; 15 and 30 seconds and minutes), labels at least
// `minimumPixels` apart.
TickSpacing timeTicks(double framesPerPixel, uint32_t sampleRate, double minimumPixels);
TickSpacing frameTicks(double framesPerPixel, double minimumPixels);

// Ticks that are round numbers in a format.
TickSpacing ticksIn(TimeFormat format, double framesPerPixel, uint32_t sampleRate, double minimumPixels);
// A position in a format, without its unit: "12 345", "1.2500", "1 250.0", "0:00:01.250". `decimals` negative
// gives those that serve for reading off a position.
std::string positionIn(TimeFormat format, double frame, uint32_t sampleRate, int decimals = -1);

// "h:mm:ss.mmm" with this many decimals (none leaves the point out), rounded to nearest.
std::string formatTime(double seconds, int decimals = 3);
// "1 234 567": digits in groups of three.
std::string formatCount(int64_t count);

struct AmplitudeTick {
  double value;  // -1 to 1 at zoom 1
  std::string label;
};

// Labels for a lane of this height in pixels that shows ±1/zoom, at least `minimumPixels` apart; the zero
// line first. In decibels the same heights carry full-scale levels.
std::vector<AmplitudeTick> amplitudeTicks(double height, double zoom, bool decibels, double minimumPixels);

}  // namespace plumetta
