// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/level_colours.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace plumetta {
namespace {

// Oklab, where equal distances look equally large.
struct Lab {
  double lightness, a, b;
};

double linearOf(uint8_t encoded) {
  const double value = encoded / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

uint8_t encodedOf(double linear) {
  const double value = std::clamp(linear, 0.0, 1.0);
  const double encoded = value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
  return static_cast<uint8_t>(std::lround(255.0 * encoded));
}

Lab labOf(const Rgb& colour) {
  const double r = linearOf(colour.red), g = linearOf(colour.green), b = linearOf(colour.blue);
  const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
  const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
  const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
  return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
          1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
          0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

Rgb screenColour(const Lab& colour) {
  const auto cube = [](double x) { return x * x * x; };
  const double l = cube(colour.lightness + 0.3963377774 * colour.a + 0.2158037573 * colour.b);
  const double m = cube(colour.lightness - 0.1055613458 * colour.a - 0.0638541728 * colour.b);
  const double s = cube(colour.lightness - 0.0894841775 * colour.a - 1.2914855480 * colour.b);
  return {encodedOf(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
          encodedOf(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
          encodedOf(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

// A colour that is passed on the way: where, how colourful, of which hue in degrees.
struct Stop {
  double at, chroma, hue;
};

// Night blue, violet, rose, amber, pale yellow.
constexpr Stop kOnDark[] = {
    {0.22, 0.09, 265}, {0.42, 0.15, 292}, {0.62, 0.19, 355}, {0.80, 0.15, 415}, {1.00, 0.07, 460}};
constexpr double kBrightest = 0.97;
// Sky, the house's blue, violet, raspberry, wine.
constexpr Stop kOnLight[] = {
    {0.22, 0.06, 235}, {0.45, 0.13, 252}, {0.62, 0.17, 285}, {0.80, 0.15, 345}, {1.00, 0.07, 378}};
constexpr double kDarkest = 0.20;

Lab colourOf(const Stop& stop, double lightness) {
  const double hue = stop.hue * std::numbers::pi / 180.0;
  return {lightness, stop.chroma * std::cos(hue), stop.chroma * std::sin(hue)};
}

}  // namespace

double perceivedLightness(const Rgb& colour) { return labOf(colour).lightness; }

LevelColours levelColours(const Theme& theme) {
  const Lab ground = labOf({theme.lane.Red(), theme.lane.Green(), theme.lane.Blue()});
  const std::span<const Stop> stops = theme.dark ? std::span(kOnDark) : std::span(kOnLight);
  const double end = theme.dark ? kBrightest : kDarkest;
  LevelColours colours;
  for (size_t i = 0; i < colours.size(); ++i) {
    const double at = static_cast<double>(i) / (colours.size() - 1);
    const double lightness = ground.lightness + at * (end - ground.lightness);
    size_t next = 0;
    while (next + 1 < stops.size() && stops[next].at < at) ++next;
    const Lab from = next == 0 ? ground : colourOf(stops[next - 1], lightness);
    const Lab to = colourOf(stops[next], lightness);
    const double begin = next == 0 ? 0.0 : stops[next - 1].at;
    const double share = (at - begin) / (stops[next].at - begin);
    colours[i] =
        screenColour({lightness, from.a + share * (to.a - from.a), from.b + share * (to.b - from.b)});
  }
  return colours;
}

}  // namespace plumetta
