// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// What one bar of a meter shows: a level that rises at once and falls slowly, the loudest of the last while,
// and whether full scale was ever reached. Levels are peaks in dB, full scale 0.
class LevelMeter {
 public:
  static constexpr double kFloorDb = -72.0;  // and below: nothing
  static constexpr double kFallDbPerSecond = 20.0;
  static constexpr double kHoldSeconds = 2.0;

  // The largest |x| of the `seconds` since the last call.
  void advance(float peak, double seconds);
  void clearClip() { clipped_ = false; }

  double levelDb() const { return levelDb_; }
  // Stays for kHoldSeconds, then falls as the level does.
  double heldDb() const { return heldDb_; }
  // Since `clearClip`.
  bool clipped() const { return clipped_; }
  // Whether silence would still change what is shown.
  bool falling() const { return heldDb_ > kFloorDb; }

 private:
  double levelDb_ = kFloorDb;
  double heldDb_ = kFloorDb;
  double heldFor_ = 0.0;  // seconds
  bool clipped_ = false;
};

}  // namespace plumetta
