// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/gapper.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace plumetta {
namespace {

constexpr double kShortestEdgeSeconds = 0.001;
constexpr int32_t kFramesPerTurn = 4096;

double edgeGain(GateEdge edge, double t) {
  switch (edge) {
    case GateEdge::linear:
      return t;
    case GateEdge::sine:
      return (1 - std::cos(std::numbers::pi * t)) / 2;
    case GateEdge::exponential:
      return std::expm1(t) / (std::numbers::e - 1);
    case GateEdge::square:
      return t * t;
  }
  return t;
}

// The gain at `t` seconds of a buffer of `duration` seconds.
double gainAt(const Gate& gate, double t, double duration) {
  const double slope = (gate.stopHz - gate.startHz) / duration;
  // Cycles are the integral of the frequency.
  const double cycles = gate.startHz * t + slope * t * t / 2;
  const double open = 2 * (cycles - std::floor(cycles));  // 0 to 1 while it is open
  if (open >= 1) return 0;
  const double openSeconds = 0.5 / (gate.startHz + slope * t);
  const auto edge = [&](double part, double way) {
    const double length = std::min(std::max(part, kShortestEdgeSeconds / openSeconds), 1.0);
    return way >= length ? 1.0 : edgeGain(gate.edge, way / length);
  };
  return std::min(edge(gate.fadeIn, open), edge(gate.fadeOut, 1 - open));
}

}  // namespace

bool applyGate(CWave& wave, const Gate& gate) {
  const double rate = wave.sampleRate();
  const double duration = wave.frames() / rate;
  for (int32_t frame = 0; frame < wave.frames(); ++frame) {
    const auto gain = static_cast<float>(gainAt(gate, frame / rate, duration));
    for (int c = 0; c < wave.channels(); ++c) {
      if (wave.isActive(c)) wave.setSample(frame, c, gain != 0 ? wave.sample(frame, c) * gain : 0.0f);
    }
    const bool turn = frame % kFramesPerTurn == 0;
    if (turn && !wave.nextTurn(static_cast<double>(frame) / wave.frames())) return false;
  }
  return true;
}

}  // namespace plumetta
