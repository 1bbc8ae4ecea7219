// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/surface_painter.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace plumetta {
namespace {

using Point = SurfaceProjection::Point;

constexpr double kDepth = SurfaceProjection::kDepth;
constexpr double kHeight = SurfaceProjection::kHeight;
constexpr float kWallLight = 0.7f;
constexpr float kLineLight = 0.72f;
// How strongly slopes are lit: light on level ground, and what the slopes add to it.
constexpr double kLevelLight = 0.94, kSlopeLight = 0.11;

uint8_t lit(uint8_t channel, float light) {
  return static_cast<uint8_t>(std::min(static_cast<float>(channel) * light + 0.5f, 255.0f));
}

Rgb lit(const Rgb& colour, float light) {
  return {lit(colour.red, light), lit(colour.green, light), lit(colour.blue, light)};
}

// Which side of the line from a to b a point is on.
double sideOf(double ax, double ay, double bx, double by, double x, double y) {
  return (bx - ax) * (y - ay) - (by - ay) * (x - ax);
}

}  // namespace

SurfacePainter::SurfacePainter(const HeightField& field, const SurfaceProjection& projection)
    : field_(field), projection_(projection) {
  // Where the eye stands, counted in cells.
  const double eyePlace = (projection.eyeX() + 1.0) / 2.0 * (field.places - 1);
  const double eyeSpectrum = (1.0 - projection.eyeY() / kDepth) / 2.0 * (field.spectra - 1);
  placeOrder_ = cellOrder(field.places - 1, eyePlace);
  spectrumOrder_ = cellOrder(field.spectra - 1, eyeSpectrum);
  vertices_.reserve(field.heights.size());
  for (int s = 0; s < field.spectra; ++s) {
    for (int p = 0; p < field.places; ++p) {
      const Point at = projection.at(xOf(p), yOf(s), field.at(s, p) * kHeight);
      vertices_.push_back(
          {static_cast<float>(at.x), static_cast<float>(at.y), 255.0f * field.at(s, p), lightAt(s, p)});
    }
  }
}

std::vector<int> SurfacePainter::cellOrder(int cells, double eyeCell) const {
  std::vector<int> order(static_cast<size_t>(cells));
  std::iota(order.begin(), order.end(), 0);
  const auto distance = [&](int cell) { return std::abs(cell + 0.5 - eyeCell); };
  std::ranges::stable_sort(order, [&](int a, int b) { return distance(a) > distance(b); });
  return order;
}

// Slopes that look to the left and to the front are brighter.
float SurfacePainter::lightAt(int spectrum, int place) const {
  const int before = std::max(place - 1, 0), behind = std::min(place + 1, field_.places - 1);
  const int earlier = std::max(spectrum - 1, 0), later = std::min(spectrum + 1, field_.spectra - 1);
  const double across =
      (field_.at(spectrum, behind) - field_.at(spectrum, before)) * kHeight / (xOf(behind) - xOf(before));
  const double along =
      (field_.at(later, place) - field_.at(earlier, place)) * kHeight / (yOf(earlier) - yOf(later));
  const double length = std::sqrt(1.0 + across * across + along * along);
  return static_cast<float>(kLevelLight + kSlopeLight * (across - 0.5 * along) / length);
}

// ---- Painting -------------------------------------------------------------------------------------------

void SurfacePainter::paintFrame(Picture& picture, Rgb line, int levels) const {
  const auto planeAt = [&](double x0, double y0, double x1, double y1) {
    for (int level = 0; level <= levels; ++level) {
      const double z = kHeight * level / levels;
      drawLine(picture, projection_.at(x0, y0, z), projection_.at(x1, y1, z), line);
    }
    drawLine(picture, projection_.at(x0, y0, 0), projection_.at(x0, y0, kHeight), line);
    drawLine(picture, projection_.at(x1, y1, 0), projection_.at(x1, y1, kHeight), line);
  };
  // Planes that turn their inner side to the eye.
  if (projection_.eyeX() < 1) planeAt(1, -kDepth, 1, kDepth);
  if (projection_.eyeX() > -1) planeAt(-1, -kDepth, -1, kDepth);
  if (projection_.eyeY() < kDepth) planeAt(-1, kDepth, 1, kDepth);
  if (projection_.eyeY() > -kDepth) planeAt(-1, -kDepth, 1, -kDepth);
}

void SurfacePainter::paintSurface(Picture& picture, const LevelColours& colours, int lineEvery) const {
  const double eyeSpectrum = (1.0 - projection_.eyeY() / kDepth) / 2.0 * (field_.spectra - 1);
  for (const int s : spectrumOrder_) {
    for (const int p : placeOrder_) {
      const Vertex &a = vertex(s, p), &b = vertex(s, p + 1), &c = vertex(s + 1, p), &d = vertex(s + 1, p + 1);
      fillTriangle(picture, colours, a, b, c);
      fillTriangle(picture, colours, b, d, c);
      // The edge towards the eye; what of it the next cell hides is painted over.
      const int nearer = s + 0.5 < eyeSpectrum ? s + 1 : s;
      if (lineEvery == 0 || nearer % lineEvery != 0) continue;
      const Vertex &from = vertex(nearer, p), &to = vertex(nearer, p + 1);
      const Rgb& colour = colours[static_cast<size_t>((from.level + to.level) / 2)];
      drawLine(picture, {from.x, from.y}, {to.x, to.y}, lit(colour, kLineLight));
    }
  }
  if (projection_.eyeY() < -kDepth) paintWall(picture, colours, field_.spectra - 1, 0, 0, 1);
  if (projection_.eyeY() > kDepth) paintWall(picture, colours, 0, 0, 0, 1);
  if (projection_.eyeX() < -1) paintWall(picture, colours, 0, 0, 1, 0);
  if (projection_.eyeX() > 1) paintWall(picture, colours, 0, field_.places - 1, 1, 0);
}

// Between the floor and the surface's rim.
void SurfacePainter::paintWall(Picture& picture, const LevelColours& colours, int spectrum, int place,
                               int spectrumStep, int placeStep) const {
  const auto end = [&] {
    return spectrum + spectrumStep >= field_.spectra || place + placeStep >= field_.places;
  };
  for (; !end(); spectrum += spectrumStep, place += placeStep) {
    Vertex rim[2], foot[2];
    for (int i = 0; i < 2; ++i) {
      const int s = spectrum + i * spectrumStep, p = place + i * placeStep;
      rim[i] = vertex(s, p);
      const Point floor = projection_.at(xOf(p), yOf(s), 0);
      foot[i] = {static_cast<float>(floor.x), static_cast<float>(floor.y), 0.0f, kWallLight};
      rim[i].light = kWallLight;
    }
    fillTriangle(picture, colours, rim[0], rim[1], foot[0]);
    fillTriangle(picture, colours, rim[1], foot[1], foot[0]);
  }
}

// Pixels whose middle lies inside; of two triangles that share an edge each pixel belongs to one.
void SurfacePainter::fillTriangle(Picture& picture, const LevelColours& colours, const Vertex& a,
                                  const Vertex& b, const Vertex& c) {
  const Vertex* v[3] = {&a, &b, &c};
  std::sort(v, v + 3, [](const Vertex* one, const Vertex* other) {
    return one->y < other->y || (one->y == other->y && one->x < other->x);
  });
  const float area = (v[1]->x - v[0]->x) * (v[2]->y - v[0]->y) - (v[2]->x - v[0]->x) * (v[1]->y - v[0]->y);
  if (area == 0.0f) return;
  // Level and light as planes over the picture.
  const auto slopeX = [&](float Vertex::*m) {
    return ((v[1]->*m - v[0]->*m) * (v[2]->y - v[0]->y) - (v[2]->*m - v[0]->*m) * (v[1]->y - v[0]->y)) / area;
  };
  const auto slopeY = [&](float Vertex::*m) {
    return ((v[2]->*m - v[0]->*m) * (v[1]->x - v[0]->x) - (v[1]->*m - v[0]->*m) * (v[2]->x - v[0]->x)) / area;
  };
  const float levelX = slopeX(&Vertex::level), levelY = slopeY(&Vertex::level);
  const float lightX = slopeX(&Vertex::light), lightY = slopeY(&Vertex::light);
  const float lowest = std::min({a.level, b.level, c.level}), highest = std::max({a.level, b.level, c.level});
  const auto edgeAt = [](const Vertex& from, const Vertex& to, float y) {
    return from.x + (to.x - from.x) * ((y - from.y) / (to.y - from.y));
  };
  const auto firstInside = [](float at, int size) {
    return static_cast<int>(std::clamp(std::ceil(at - 0.5f), 0.0f, static_cast<float>(size)));
  };
  const int bottom = firstInside(v[2]->y, picture.height);
  for (int y = firstInside(v[0]->y, picture.height); y < bottom; ++y) {
    const float middle = static_cast<float>(y) + 0.5f;
    const float oneEdge = edgeAt(*v[0], *v[2], middle);
    const float otherEdge = middle < v[1]->y ? edgeAt(*v[0], *v[1], middle) : edgeAt(*v[1], *v[2], middle);
    const int end = firstInside(std::max(oneEdge, otherEdge), picture.width);
    for (int x = firstInside(std::min(oneEdge, otherEdge), picture.width); x < end; ++x) {
      const float dx = static_cast<float>(x) + 0.5f - v[0]->x, dy = middle - v[0]->y;
      const float level = std::clamp(v[0]->level + dx * levelX + dy * levelY, lowest, highest);
      picture.at(x, y) = lit(colours[static_cast<size_t>(level)], v[0]->light + dx * lightX + dy * lightY);
    }
  }
}

// Two pixels wide.
void SurfacePainter::drawLine(Picture& picture, Point from, Point to, Rgb colour) {
  const double reach = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
  const auto steps = static_cast<int>(std::clamp(std::ceil(reach), 1.0, 1e5));
  for (int step = 0; step <= steps; ++step) {
    const double share = static_cast<double>(step) / steps;
    const auto x = static_cast<int>(std::floor(from.x + share * (to.x - from.x)));
    const auto y = static_cast<int>(std::floor(from.y + share * (to.y - from.y)));
    for (int row = std::max(y, 0); row <= std::min(y + 1, picture.height - 1); ++row) {
      for (int column = std::max(x, 0); column <= std::min(x + 1, picture.width - 1); ++column) {
        picture.at(column, row) = colour;
      }
    }
  }
}

// ---- Looking up -----------------------------------------------------------------------------------------

std::optional<SurfacePainter::Spot> SurfacePainter::spotAt(double x, double y) const {
  const auto inside = [&](const Vertex& a, const Vertex& b, const Vertex& c) {
    const double one = sideOf(a.x, a.y, b.x, b.y, x, y), two = sideOf(b.x, b.y, c.x, c.y, x, y),
                 three = sideOf(c.x, c.y, a.x, a.y, x, y);
    return (one >= 0 && two >= 0 && three >= 0) || (one <= 0 && two <= 0 && three <= 0);
  };
  for (auto s = spectrumOrder_.rbegin(); s != spectrumOrder_.rend(); ++s) {
    for (auto p = placeOrder_.rbegin(); p != placeOrder_.rend(); ++p) {
      const Vertex &a = vertex(*s, *p), &b = vertex(*s, *p + 1), &c = vertex(*s + 1, *p),
                   &d = vertex(*s + 1, *p + 1);
      if (inside(a, b, c) || inside(b, d, c)) return Spot{*s, *p};
    }
  }
  return std::nullopt;
}

Picture halved(const Picture& picture) {
  Picture half(picture.width / 2, picture.height / 2, {});
  const auto mean = [](int a, int b, int c, int d) { return static_cast<uint8_t>((a + b + c + d + 2) / 4); };
  for (int y = 0; y < half.height; ++y) {
    for (int x = 0; x < half.width; ++x) {
      const Rgb &a = picture.at(2 * x, 2 * y), &b = picture.at(2 * x + 1, 2 * y),
                &c = picture.at(2 * x, 2 * y + 1), &d = picture.at(2 * x + 1, 2 * y + 1);
      half.at(x, y) = {mean(a.red, b.red, c.red, d.red), mean(a.green, b.green, c.green, d.green),
                       mean(a.blue, b.blue, c.blue, d.blue)};
    }
  }
  return half;
}

}  // namespace plumetta
