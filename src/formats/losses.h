// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "core/wave.h"

namespace plumetta {

// How many of each a container can hold; 0 for none.
struct AnnotationLimits {
  int markers = 0;
  int loops = 0;
};

// What a container without the chunks of our WAV files would not hold of a buffer's annotations, each in a
// few words, as Format::losses tells it: the volume envelope, chunks of other programs, and the markers and
// loops that go beyond the limits.
std::vector<std::string> annotationLosses(const CWave& wave, AnnotationLimits limits);

}  // namespace plumetta
