// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "doc/rgb.h"
#include "platform/file_system.h"

namespace plumetta {

// "#RRGGBB" or "R,G,B" with numbers up to 255; nothing for anything else.
std::optional<Rgb> parseColour(std::string_view text);
// "#RRGGBB".
std::string colourText(Rgb colour);
// How much two colours differ in brightness, from 1 (not at all) to 21 (black and white). Text needs 4.5 to
// be read with ease and can hardly be read below 3.
double contrast(Rgb a, Rgb b);

// The colours of the editor's own views, in the order of their rows.
enum class Tint {
  lane,
  laneSelected,
  margin,
  line,
  grid,
  zero,
  text,
  textQuiet,
  accent,
  peak,
  rms,
  peakSelected,
  rmsSelected,
  peakOff,
  rmsOff,
  clip,
  cursor,
  playCursor,
  marker,
  markerText,
  loop,
  envelope,
  curve1,
  curve2,
  curve3,
  curve4,
  curve5,
  curve6,
  curve7,
  curve8,
  count
};
inline constexpr size_t kTints = static_cast<size_t>(Tint::count);

// One colour of a skin.
struct TintRow {
  const char* key;      // in the file
  const char* meaning;  // in the dialog
  Rgb light, dark;      // defaults
  Tint ground;          // what it is drawn on; itself for what lies beneath all else
  bool isText = false;
  uint8_t opacity = 0xFF;  // as it is drawn
};
const TintRow& tintRow(Tint tint);

// The colours that somebody has chosen; the others keep their defaults.
class Skin {
 public:
  std::optional<Rgb>& operator[](Tint tint) { return given_[static_cast<size_t>(tint)]; }
  const std::optional<Rgb>& operator[](Tint tint) const { return given_[static_cast<size_t>(tint)]; }
  bool operator==(const Skin&) const = default;

 private:
  std::array<std::optional<Rgb>, kTints> given_;
};

// Every colour, given or by default. What is not given suits the ground that it is drawn on: on a dark one
// the default for dark, and text on a given one has whichever of its defaults, or of black and white, can be
// read.
class Palette {
 public:
  // `dark` counts where the skin doesn't give the ground.
  Palette(const Skin& skin, bool dark);
  Rgb operator[](Tint tint) const { return colours_[static_cast<size_t>(tint)]; }
  // Whether text and lines stand on a dark ground.
  bool dark() const { return dark_; }
  // As a skin that gives every colour.
  Skin asSkin() const;

 private:
  bool dark_;
  std::array<Rgb, kTints> colours_;
};

// A skin file: a private profile with section "Colors".
struct SkinReading {
  bool isSkin = false;  // else nothing could be taken from it
  Skin skin;
  std::vector<std::string> problems;  // a sentence each
};
SkinReading readSkin(FileSystem& files, const std::string& path);
// Colours of text that can hardly be told from the ground that is behind them, and the same as sentences.
std::vector<Tint> unreadableTints(const Skin& skin, bool dark);
std::vector<std::string> unreadableTexts(const Skin& skin, bool dark);
// Every colour; what else stands in the file is kept. False when it can't be written.
bool writeSkin(const std::string& path, const Palette& palette);

}  // namespace plumetta
