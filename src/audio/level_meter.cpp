// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/level_meter.h"

#include <algorithm>
#include <cmath>

#include "audio/playback_controls.h"

namespace plumetta {
namespace {

constexpr double kLoudestDb = 60.0;  // what a plug-in gone mad sends falls from here

double levelOf(float peak) {
  if (!(peak > 0.0f)) return LevelMeter::kFloorDb;
  return std::clamp(20.0 * std::log10(static_cast<double>(peak)), LevelMeter::kFloorDb, kLoudestDb);
}

}  // namespace

void LevelMeter::advance(float peak, double seconds) {
  const double db = levelOf(peak);
  levelDb_ = std::max(db, levelDb_ - kFallDbPerSecond * seconds);
  heldFor_ += seconds;
  const double heldStill = heldFor_ < kHoldSeconds ? heldDb_ : heldDb_ - kFallDbPerSecond * seconds;
  if (db >= heldDb_) heldFor_ = 0.0;
  heldDb_ = std::max(levelDb_, heldStill);
  clipped_ = clipped_ || peak >= kOutputCeiling;
}

}  // namespace plumetta
