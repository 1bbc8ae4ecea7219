// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"

namespace plumetta {

// How the gate opens and closes.
enum class GateEdge { linear = -1, sine = 0, exponential = 1, square = 2 };

// A gate that is open for the first half of each of its cycles.
struct Gate {
  GateEdge edge = GateEdge::linear;
  double startHz = 4;  // cycles a second at the first frame ...
  double stopHz = 4;   // ... and at the end; evenly in between
  // Parts of the open half, 0 to 1. No edge is shorter than a millisecond, so that none clicks.
  double fadeIn = 0.1;
  double fadeOut = 0.1;
};

// Lets the active channels of the whole buffer through while the gate is open. False when it was asked to
// stop; the rest is untouched then.
bool applyGate(CWave& wave, const Gate& gate);

}  // namespace plumetta
