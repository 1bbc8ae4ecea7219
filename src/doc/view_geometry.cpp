// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/view_geometry.h"

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

double lastPixel(int width) { return std::max(width - 1, 1); }

FrameScale insideFile(FrameScale scale, int32_t frames, int width) {
  const double farthest = static_cast<double>(frames) - 1 - lastPixel(width) * scale.framesPerPixel;
  scale.first = std::clamp(scale.first, 0.0, std::max(farthest, 0.0));
  return scale;
}

}  // namespace

int64_t FrameScale::nearestFrame(double x) const { return std::llround(frame(x)); }

FrameScale fitScale(int32_t frames, int width) {
  return {0, std::max(static_cast<double>(frames) - 1, 1.0) / lastPixel(width)};
}

FrameScale shownScale(double first, double framesPerPixel, int32_t frames, int width) {
  const FrameScale fit = fitScale(frames, width);
  if (!(framesPerPixel > 0) || framesPerPixel >= fit.framesPerPixel || !std::isfinite(first)) return fit;
  return insideFile({first, std::max(framesPerPixel, kClosestZoom)}, frames, width);
}

FrameScale zoomedAbout(const FrameScale& scale, double x, double factor, int32_t frames, int width) {
  const double wanted = scale.framesPerPixel / factor;
  const double closest = std::min(kClosestZoom, scale.framesPerPixel);
  const FrameScale zoomed{scale.frame(x) - x * std::max(wanted, closest), std::max(wanted, closest)};
  return shownScale(zoomed.first, zoomed.framesPerPixel, frames, width);
}

FrameScale showing(const FrameScale& scale, double frame, int32_t frames, int width) {
  const double span = lastPixel(width) * scale.framesPerPixel;
  if (frame >= scale.first && frame <= scale.first + span) return scale;
  const bool near = frame > scale.first - span / 4 && frame < scale.first + span * 5 / 4;
  FrameScale moved = scale;
  if (!near) {
    moved.first = frame - span / 4;
  } else {
    moved.first = frame < scale.first ? frame : frame - span;
  }
  return insideFile(moved, frames, width);
}

FrameScale following(const FrameScale& scale, double before, double now, int32_t frames, int width) {
  constexpr double kMargin = 0.05;  // of the window: what the eye keeps of the page before
  const double span = lastPixel(width) * scale.framesPerPixel;
  const auto seen = [&](double frame) { return frame >= scale.first && frame <= scale.first + span; };
  if (!seen(before) || seen(now)) return scale;
  // Rewinding goes back in small steps; a far leap is the start of a loop, from which it goes forwards.
  const bool backwards = now < before && before - now < span / 4;
  FrameScale moved = scale;
  moved.first = backwards ? now - (1 - kMargin) * span : now - kMargin * span;
  return insideFile(moved, frames, width);
}

bool showsAll(const FrameScale& scale, int32_t frames, int width) {
  return scale.framesPerPixel >= fitScale(frames, width).framesPerPixel;
}

std::optional<RangeEdge> edgeAt(const FrameScale& scale, int32_t lower, int32_t upper, double x,
                                double reach) {
  const double toLower = std::abs(scale.x(lower) - x);
  const double toUpper = std::abs(scale.x(upper) - x);
  if (std::min(toLower, toUpper) > reach) return std::nullopt;
  // Of two edges in one place the one on the pointer's own side is meant.
  if (toLower == toUpper) return x < scale.x(lower) ? RangeEdge::lower : RangeEdge::upper;
  return toLower < toUpper ? RangeEdge::lower : RangeEdge::upper;
}

int32_t scaledUpper(int32_t lower, int32_t upper, double factor, int32_t lastFrame) {
  const double length = std::round((upper - lower + 1.0) * factor);
  const double wanted = std::clamp(lower + length - 1, lower + 1.0, std::max<double>(lastFrame, lower + 1.0));
  return static_cast<int32_t>(std::min<double>(wanted, lastFrame));
}

int LaneLayout::top(int lane) const {
  return static_cast<int>(static_cast<int64_t>(height + gap) * lane / std::max(lanes, 1));
}

std::optional<int> LaneLayout::laneAt(int y) const {
  for (int lane = 0; lane < lanes; ++lane) {
    if (y >= top(lane) && y < top(lane) + laneHeight(lane)) return lane;
  }
  return std::nullopt;
}

double EnvelopeScale::value(double y) const { return std::clamp(1.0 - (y - top) / height, 0.0, 1.0); }

}  // namespace plumetta
