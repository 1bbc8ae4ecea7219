// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "doc/picture.h"
#include "doc/surface_projection.h"

namespace plumetta {

// Levels along frequency (to the right) and time (to the front), 0 to 1. At least two of both.
struct HeightField {
  int spectra = 0;             // the earliest first, which stands at the back
  int places = 0;              // of each spectrum, the lowest frequency first
  std::vector<float> heights;  // spectra × places

  float at(int spectrum, int place) const {
    return heights[static_cast<size_t>(spectrum) * static_cast<size_t>(places) + static_cast<size_t>(place)];
  }
};

// Paints a height field in perspective: from back to front, so that what is nearer hides what lies behind it.
class SurfacePainter {
 public:
  // Both must outlive the painter.
  SurfacePainter(const HeightField& field, const SurfaceProjection& projection);

  // The back and side planes with lines at `levels` even steps of height.
  void paintFrame(Picture& picture, Rgb line, int levels) const;
  // The surface coloured by height and lit from the left, with a thin line along every `lineEvery`-th
  // spectrum (0 for none), and the cut at the sides that face the eye.
  void paintSurface(Picture& picture, const LevelColours& colours, int lineEvery) const;

  struct Spot {
    int spectrum, place;
  };
  // What of the surface is seen at a point.
  std::optional<Spot> spotAt(double x, double y) const;

 private:
  struct Vertex {
    float x, y;
    float level;  // as an index of colours
    float light;
  };

  double xOf(int place) const { return 2.0 * place / (field_.places - 1) - 1.0; }
  double yOf(int spectrum) const {
    return SurfaceProjection::kDepth * (1.0 - 2.0 * spectrum / (field_.spectra - 1));
  }
  const Vertex& vertex(int spectrum, int place) const {
    return vertices_[static_cast<size_t>(spectrum) * static_cast<size_t>(field_.places) +
                     static_cast<size_t>(place)];
  }
  float lightAt(int spectrum, int place) const;
  // The cells of a side in the order from the farthest to the nearest of the eye.
  std::vector<int> cellOrder(int cells, double eyeCell) const;
  void paintWall(Picture& picture, const LevelColours& colours, int spectrum, int place, int spectrumStep,
                 int placeStep) const;
  static void fillTriangle(Picture& picture, const LevelColours& colours, const Vertex& a, const Vertex& b,
                           const Vertex& c);
  static void drawLine(Picture& picture, SurfaceProjection::Point from, SurfaceProjection::Point to,
                       Rgb colour);

  const HeightField& field_;
  const SurfaceProjection& projection_;
  std::vector<int> spectrumOrder_, placeOrder_;
  std::vector<Vertex> vertices_;
};

// A picture of half the width and height, each pixel the mean of four.
Picture halved(const Picture& picture);

}  // namespace plumetta
