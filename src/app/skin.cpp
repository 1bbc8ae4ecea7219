// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/skin.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "platform/paths.h"
#include "platform/private_profile.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Colors";
constexpr double kHardlyReadable = 3;
constexpr size_t kLongestQuoted = 40;  // of a bad value, in a message

constexpr Rgb rgb(uint32_t value) {
  return {static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

// In the order of `Tint`.
constexpr TintRow kRows[] = {
    {"Lane", "Behind the waveform", rgb(0xFFFFFF), rgb(0x16191D), Tint::lane},
    {"LaneSelected", "Behind its selected part", rgb(0xD6E6FA), rgb(0x243B58), Tint::lane},
    {"Margin", "Rulers, marker strip, displays", rgb(0xF2F4F6), rgb(0x202429), Tint::margin},
    {"Line", "Lines between areas", rgb(0xD5DAE0), rgb(0x3A4048), Tint::margin},
    {"Grid", "Grid of levels", rgb(0x002040), rgb(0xD0E0FF), Tint::lane, false, 0x14},
    {"Zero", "Zero line", rgb(0x002040), rgb(0xD0E0FF), Tint::lane, false, 0x38},
    {"Text", "Text", rgb(0x2A3038), rgb(0xE2E6EB), Tint::margin, true},
    {"TextQuiet", "Numbers of the rulers", rgb(0x5E6874), rgb(0x9CA5B0), Tint::margin, true},
    {"Accent", "Focus, switches, chosen lines", rgb(0x2B6CC4), rgb(0x63A4F2), Tint::margin},
    {"Peak", "Waveform: peaks", rgb(0x8DB4E0), rgb(0x3C6898), Tint::lane},
    {"Rms", "Waveform: loudness", rgb(0x3A77C2), rgb(0x6CA8EC), Tint::lane},
    {"PeakSelected", "Selected part: peaks", rgb(0x5B8FD0), rgb(0x5F98D8), Tint::laneSelected},
    {"RmsSelected", "Selected part: loudness", rgb(0x164C94), rgb(0xC4DFFF), Tint::laneSelected},
    {"PeakOff", "Inactive channel: peaks", rgb(0xD3D8DE), rgb(0x333940), Tint::lane},
    {"RmsOff", "Inactive channel: loudness", rgb(0xB4BCC6), rgb(0x4B535C), Tint::lane},
    {"Clip", "Beyond full scale", rgb(0xD93A34), rgb(0xFF5C54), Tint::lane},
    {"Cursor", "Cursor", rgb(0x161A20), rgb(0xF4F6F8), Tint::lane},
    {"PlayCursor", "Play cursor", rgb(0xD01C6E), rgb(0xFF6FAE), Tint::lane},
    {"Marker", "Markers, high levels", rgb(0xC96A0A), rgb(0xF2A63C), Tint::lane},
    {"MarkerText", "Name of the chosen marker", rgb(0xFFFFFF), rgb(0x1C1404), Tint::marker, true},
    {"Loop", "Loops, levels", rgb(0x1C8A68), rgb(0x46C49A), Tint::lane},
    {"Envelope", "Volume envelope", rgb(0x8A3FC6), rgb(0xC792FF), Tint::lane},
    {"Curve1", "Channel 1 in plots", rgb(0x2B6CC4), rgb(0x63A4F2), Tint::lane},
    {"Curve2", "Channel 2 in plots", rgb(0xC85A0A), rgb(0xF29A4C), Tint::lane},
    {"Curve3", "Channel 3 in plots", rgb(0x1C8A68), rgb(0x46C49A), Tint::lane},
    {"Curve4", "Channel 4 in plots", rgb(0x8A3FC6), rgb(0xC792FF), Tint::lane},
    {"Curve5", "Channel 5 in plots", rgb(0xC22E5E), rgb(0xFF7CA0), Tint::lane},
    {"Curve6", "Channel 6 in plots", rgb(0x8A740A), rgb(0xD8C050), Tint::lane},
    {"Curve7", "Channel 7 in plots", rgb(0x1A8AA8), rgb(0x54C8E4), Tint::lane},
    {"Curve8", "Channel 8 in plots", rgb(0x5E6874), rgb(0x9CA5B0), Tint::lane},
};
static_assert(std::size(kRows) == kTints);

std::optional<uint8_t> parsePart(std::string_view text, int base) {
  uint8_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  return whole ? std::optional(number) : std::nullopt;
}

std::optional<Rgb> ofParts(std::array<std::string_view, 3> parts, int base) {
  const auto red = parsePart(parts[0], base), green = parsePart(parts[1], base);
  const auto blue = parsePart(parts[2], base);
  if (!red || !green || !blue) return std::nullopt;
  return Rgb{*red, *green, *blue};
}

// Relative luminance, 0 to 1, of a colour in the usual colour space of screens.
double luminance(Rgb colour) {
  const auto linear = [](uint8_t part) {
    const double value = part / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) + 0.0722 * linear(colour.blue);
}

bool isDark(Rgb colour) { return contrast(colour, {255, 255, 255}) > contrast(colour, {0, 0, 0}); }

Tint tintAt(size_t index) { return static_cast<Tint>(index); }

}  // namespace

// ---- Colours --------------------------------------------------------------------------------------------

std::optional<Rgb> parseColour(std::string_view text) {
  if (text.starts_with('#')) {
    if (text.size() != 7) return std::nullopt;
    return ofParts({text.substr(1, 2), text.substr(3, 2), text.substr(5, 2)}, 16);
  }
  std::array<std::string_view, 3> parts;
  for (size_t i = 0; i < 3; ++i) {
    const size_t comma = text.find(',');
    if ((comma == std::string_view::npos) != (i == 2)) return std::nullopt;
    parts[i] = text.substr(0, comma);
    while (parts[i].starts_with(' ')) parts[i].remove_prefix(1);
    while (parts[i].ends_with(' ')) parts[i].remove_suffix(1);
    text.remove_prefix(i == 2 ? text.size() : comma + 1);
  }
  return ofParts(parts, 10);
}

std::string colourText(Rgb colour) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", colour.red, colour.green, colour.blue);
  return text;
}

double contrast(Rgb a, Rgb b) {
  const double first = luminance(a) + 0.05, second = luminance(b) + 0.05;
  return std::max(first, second) / std::min(first, second);
}

// ---- Palettes -------------------------------------------------------------------------------------------

const TintRow& tintRow(Tint tint) { return kRows[static_cast<size_t>(tint)]; }

Palette::Palette(const Skin& skin, bool dark) : dark_(dark), colours_{} {
  const auto& beneath = skin[Tint::margin] ? skin[Tint::margin] : skin[Tint::lane];
  if (beneath) dark_ = isDark(*beneath);
  std::array<bool, kTints> isDarkTint{};  // of those that others are drawn on
  for (size_t i = 0; i < kTints; ++i) {
    const TintRow& row = kRows[i];
    const auto ground = static_cast<size_t>(row.ground);  // comes before what is drawn on it
    const auto& given = skin[tintAt(i)];
    bool onDark = ground == i ? dark_ : isDarkTint[ground];
    if (row.isText && skin[row.ground]) {
      onDark = contrast(row.dark, *skin[row.ground]) > contrast(row.light, *skin[row.ground]);
    }
    isDarkTint[i] = given ? isDark(*given) : onDark;
    colours_[i] = given.value_or(onDark ? row.dark : row.light);
  }
}

Skin Palette::asSkin() const {
  Skin skin;
  for (size_t i = 0; i < kTints; ++i) skin[tintAt(i)] = colours_[i];
  return skin;
}

// ---- Files ----------------------------------------------------------------------------------------------

SkinReading readSkin(FileSystem& files, const std::string& path) {
  SkinReading reading;
  if (files.kind(path) != FileKind::regular) {
    reading.problems.push_back("There is no file " + path + ".");
    return reading;
  }
  std::vector<ProfileName> names;
  for (const TintRow& row : kRows) names.push_back({kSection, row.key});
  const auto values = readProfileStrings(path, names);
  for (size_t i = 0; i < kTints; ++i) {
    if (!values[i]) continue;
    reading.isSkin = true;
    reading.skin[tintAt(i)] = parseColour(*values[i]);
    if (reading.skin[tintAt(i)]) continue;
    const std::string value = values[i]->substr(0, kLongestQuoted);
    reading.problems.push_back(std::string(kRows[i].key) + " is no colour: \"" + value + "\".");
  }
  if (!reading.isSkin) reading.problems.push_back("It has no section [Colors] with colours in it.");
  return reading;
}

std::vector<Tint> unreadableTints(const Skin& skin, bool dark) {
  const Palette palette(skin, dark);
  std::vector<Tint> tints;
  for (size_t i = 0; i < kTints; ++i) {
    const bool seen = contrast(palette[tintAt(i)], palette[kRows[i].ground]) >= kHardlyReadable;
    if (kRows[i].isText && !seen) tints.push_back(tintAt(i));
  }
  return tints;
}

std::vector<std::string> unreadableTexts(const Skin& skin, bool dark) {
  const Palette palette(skin, dark);
  std::vector<std::string> problems;
  for (const Tint tint : unreadableTints(skin, dark)) {
    const TintRow& row = tintRow(tint);
    char text[160];
    std::snprintf(text, sizeof text, "%s can hardly be read on %s: their contrast is %.1f, less than %.0f.",
                  row.key, tintRow(row.ground).key, contrast(palette[tint], palette[row.ground]),
                  kHardlyReadable);
    problems.emplace_back(text);
  }
  return problems;
}

bool writeSkin(const std::string& path, const Palette& palette) {
  std::vector<ProfileEntry> entries;
  for (size_t i = 0; i < kTints; ++i) {
    entries.push_back({{kSection, kRows[i].key}, colourText(palette[tintAt(i)])});
  }
  return writeProfileStrings(path, entries);
}

}  // namespace plumetta
