// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/cornered_wave.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace plumetta {
namespace {

// Where a wave jumps or bends: its place in the cycle, the value and the slope (per cycle) from there on, and
// by how much the two have changed.
struct Corner {
  double phase, value, slope, jump, bend;
};

std::vector<Corner> cornersOf(CorneredWave wave) {
  switch (wave) {
    case CorneredWave::square:
      return {{0.0, 1, 0, 2, 0}, {0.5, -1, 0, -2, 0}};
    case CorneredWave::triangle:
      return {{0.25, 1, -4, 0, -8}, {0.75, -1, 4, 0, 8}};
    case CorneredWave::sawtooth:
      return {{0.5, -1, 2, -2, 0}};
    case CorneredWave::pulse:
      return {{0.0, 1, 0, 2, 0}, {0.25, -1, 0, -2, 0}};
  }
  return {};
}

// What a lowpass makes of a jump and of a bend, as the difference to the corner itself. The lowpass is a sinc
// under a Blackman-Harris window, so the difference ends kReach frames to both sides. Its cutoff leaves room
// for the window's main lobe, 4 / (2 × kReach) wide on each side, below half the sample rate.
class CornerResidue {
 public:
  static constexpr int kReach = 96;

  CornerResidue() : jump_(kSize + 1), bend_(kSize + 1) {
    // From the far end inwards: both are integrals of what lies beyond.
    for (int i = kSize - 1; i >= 0; --i) {
      jump_[i] = jump_[i + 1] + (lowpass(i) + lowpass(i + 1)) / (2 * kSteps);
      bend_[i] = bend_[i + 1] + (jump_[i] + jump_[i + 1]) / (2 * kSteps);
    }
    const double unit = 0.5 / jump_[0];  // half of a step of 1 lies behind its middle
    for (int i = 0; i <= kSize; ++i) {
      jump_[i] *= unit;
      bend_[i] *= unit;
    }
  }

  // `frames`: from the corner on; negative ahead of it.
  double ofJump(double frames) const { return frames < 0 ? at(jump_, -frames) : -at(jump_, frames); }
  double ofBend(double frames) const { return at(bend_, std::fabs(frames)); }

 private:
  static constexpr int kSteps = 512;  // entries a frame; straight lines between them are exact to -120 dB
  static constexpr int kSize = kReach * kSteps;
  static constexpr double kCutoff = 0.5 - 2.0 / kReach;

  static double lowpass(int i) {
    const double angle = std::numbers::pi * i / kSize;
    const double window =
        0.35875 + 0.48829 * std::cos(angle) + 0.14128 * std::cos(2 * angle) + 0.01168 * std::cos(3 * angle);
    const double x = 2 * std::numbers::pi * kCutoff * i / kSteps;
    return window * (i == 0 ? 1.0 : std::sin(x) / x);
  }
  static double at(const std::vector<double>& table, double frames) {
    const double place = frames * kSteps;
    const auto i = static_cast<int>(place);
    if (i >= kSize) return 0.0;
    return table[i] + (place - i) * (table[i + 1] - table[i]);
  }

  std::vector<double> jump_;
  std::vector<double> bend_;
};

// Adds straight lines and residues, corner by corner.
class CornerWriter {
 public:
  CornerWriter(StridedSamples samples, double cyclesPerFrame, double amplitude)
      : samples_(samples), cyclesPerFrame_(cyclesPerFrame), amplitude_(amplitude) {}

  double frameOf(int64_t cycle, const Corner& corner) const {
    return (static_cast<double>(cycle) + corner.phase) / cyclesPerFrame_;
  }
  // The straight line from one corner to the next. False when the work shall stop.
  bool addLine(const Corner& corner, double at, double next) const {
    const int64_t end = inside(std::ceil(next));
    for (int64_t f = inside(std::ceil(at)); f < end; ++f) {
      add(f, corner.value + corner.slope * cyclesPerFrame_ * (static_cast<double>(f) - at));
      if (!samples_.passed(static_cast<size_t>(f))) return false;
    }
    return true;
  }
  void addResidue(const Corner& corner, double at) const {
    static const CornerResidue residue;
    const int64_t end = inside(std::ceil(at + CornerResidue::kReach));
    for (int64_t f = inside(std::ceil(at - CornerResidue::kReach)); f < end; ++f) {
      const double x = static_cast<double>(f) - at;
      add(f, corner.jump != 0 ? corner.jump * residue.ofJump(x)
                              : corner.bend * cyclesPerFrame_ * residue.ofBend(x));
    }
  }

 private:
  int64_t inside(double frame) const {
    return static_cast<int64_t>(std::clamp(frame, 0.0, static_cast<double>(samples_.frames())));
  }
  void add(int64_t frame, double value) const {
    samples_[static_cast<size_t>(frame)] += static_cast<float>(amplitude_ * value);
  }

  StridedSamples samples_;
  double cyclesPerFrame_;
  double amplitude_;
};

}  // namespace

bool fillCorneredWave(StridedSamples samples, CorneredWave wave, double cyclesPerFrame, double amplitude) {
  for (size_t i = 0; i < samples.frames(); ++i) samples[i] = 0.0f;
  const std::vector<Corner> corners = cornersOf(wave);
  const CornerWriter writer(samples, cyclesPerFrame, amplitude);
  // The wave stands as if it had always been and went on for ever: corners outside ring into the buffer.
  const double reach = CornerResidue::kReach;
  const double end = static_cast<double>(samples.frames()) + reach;
  auto cycle = static_cast<int64_t>(std::floor(-reach * cyclesPerFrame)) - 1;
  for (size_t i = 0; writer.frameOf(cycle, corners[i]) < end;) {
    const double at = writer.frameOf(cycle, corners[i]);
    const bool lastOfCycle = i + 1 == corners.size();
    const size_t next = lastOfCycle ? 0 : i + 1;
    if (lastOfCycle) ++cycle;
    if (!writer.addLine(corners[i], at, writer.frameOf(cycle, corners[next]))) return false;
    writer.addResidue(corners[i], at);
    i = next;
  }
  return true;
}

}  // namespace plumetta
