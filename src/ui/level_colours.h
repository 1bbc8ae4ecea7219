// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "doc/picture.h"
#include "ui/theme.h"

namespace plumetta {

// They begin with the colour behind the waveform, and each differs from the one before by the same step of
// lightness: up on dark ground, down on light.
LevelColours levelColours(const Theme& theme);

// Lightness as it is perceived, 0 to 1 (B. Ottosson, A perceptual color space for image processing, 2020).
double perceivedLightness(const Rgb& colour);

}  // namespace plumetta
