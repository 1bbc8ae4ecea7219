// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>

namespace plumetta {

// Where a drawing of `frames` frames of a signal begins so that a steady tone stands still: at the last place
// where the signal rises through zero, having been clearly below it, and after which there are enough. The
// last frames when there is no such place.
size_t triggerFrame(std::span<const float> signal, size_t frames);

// How alike two channels of the same length are: 1 the same, 0 strangers or silence, -1 opposite.
double correlation(std::span<const float> left, std::span<const float> right);

// A frame in the picture of a goniometer: what both sides share points up, the left side alone to the upper
// left. Two sides at full scale reach sqrt(2).
struct StereoPoint {
  double x, y;
};
StereoPoint stereoPoint(float left, float right);

}  // namespace plumetta
