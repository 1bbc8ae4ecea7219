// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace plumetta {

// The history names of one-click effects (0 to 33), channel commands (34 + operation) and of marker, loop and
// envelope edits, by effect number.
extern const std::array<const char*, 69> EffectNames;

// Numbers of the names that commands outside the quick effects use.
namespace effect {
inline constexpr int kFirstChannelOperation = 34;
inline constexpr int kLoopCreated = 50;
inline constexpr int kLoopsCleared = 51;
inline constexpr int kMarkerCreated = 52;
inline constexpr int kMarkerDeleted = 53;
inline constexpr int kMarkersCleared = 54;
inline constexpr int kSelectionMarked = 55;
inline constexpr int kMarkerGrid = 56;
inline constexpr int kAutoSlice = 57;
inline constexpr int kVolumeCreated = 58;
inline constexpr int kVolumeDeleted = 59;
inline constexpr int kVolumeReset = 60;
inline constexpr int kVolumeReversed = 61;
inline constexpr int kVolumePointRemoved = 62;
inline constexpr int kVolumePointReset = 63;
inline constexpr int kVolumePointHold = 64;
inline constexpr int kVolumePointLinear = 65;
inline constexpr int kVolumePointSmooth = 66;
inline constexpr int kVolumePointCurve = 67;
inline constexpr int kVolumePointAdded = 68;
}  // namespace effect

}  // namespace plumetta
