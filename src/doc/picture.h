// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "doc/rgb.h"

namespace plumetta {

// The colours of levels from the lowest to the highest.
using LevelColours = std::array<Rgb, 256>;

// Pixels in rows from the top down.
struct Picture {
  Picture(int pictureWidth, int pictureHeight, Rgb ground)
      : width(pictureWidth),
        height(pictureHeight),
        pixels(static_cast<size_t>(pictureWidth) * static_cast<size_t>(pictureHeight), ground) {}

  Rgb& at(int x, int y) { return pixels[indexOf(x, y)]; }
  const Rgb& at(int x, int y) const { return pixels[indexOf(x, y)]; }
  size_t indexOf(int x, int y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
  }

  int width, height;
  std::vector<Rgb> pixels;
};

}  // namespace plumetta
