// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// A colour as screens have it.
struct Rgb {
  uint8_t red = 0, green = 0, blue = 0;

  bool operator==(const Rgb&) const = default;
};

}  // namespace plumetta
