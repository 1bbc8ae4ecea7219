// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/surface_projection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace plumetta {
namespace {

constexpr double kEyeDistance = 4.0;  // from the middle of the box
constexpr double kLowestTilt = 0.12, kHighestTilt = 1.45;
constexpr double kSmallestZoom = 0.5, kLargestZoom = 8.0;

}  // namespace

SurfaceCamera SurfaceCamera::bounded() const {
  if (!std::isfinite(turn + tilt + zoom)) return {};
  return {std::remainder(turn, 2 * std::numbers::pi), std::clamp(tilt, kLowestTilt, kHighestTilt),
          std::clamp(zoom, kSmallestZoom, kLargestZoom)};
}

SurfaceProjection::SurfaceProjection(const SurfaceCamera& camera, double width, double height,
                                     double sideMargin, double upperMargin)
    : turnSine_(std::sin(camera.turn)),
      turnCosine_(std::cos(camera.turn)),
      tiltSine_(std::sin(camera.tilt)),
      tiltCosine_(std::cos(camera.tilt)),
      eyeX_(-kEyeDistance * tiltCosine_ * turnSine_),
      eyeY_(-kEyeDistance * tiltCosine_ * turnCosine_) {
  double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
  for (int corner = 0; corner < 8; ++corner) {
    const Point point = unscaled(corner % 2 == 0 ? -1 : 1, corner / 2 % 2 == 0 ? -kDepth : kDepth,
                                 corner / 4 == 0 ? 0 : kHeight);
    left = std::min(left, point.x);
    right = std::max(right, point.x);
    top = std::min(top, point.y);
    bottom = std::max(bottom, point.y);
  }
  const double roomX = std::max(width - 2 * sideMargin, 1.0);
  const double roomY = std::max(height - 2 * upperMargin, 1.0);
  scale_ = std::min(roomX / (right - left), roomY / (bottom - top)) * camera.zoom;
  offsetX_ = width / 2 - scale_ * (left + right) / 2;
  offsetY_ = height / 2 - scale_ * (top + bottom) / 2;
}

SurfaceProjection::Point SurfaceProjection::unscaled(double x, double y, double z) const {
  const double across = x * turnCosine_ - y * turnSine_;
  const double away = x * turnSine_ + y * turnCosine_;
  const double above = z - kHeight / 2;
  const double up = above * tiltCosine_ + away * tiltSine_;
  const double depth = away * tiltCosine_ - above * tiltSine_;
  const double nearness = kEyeDistance / (kEyeDistance + depth);
  return {across * nearness, -up * nearness};
}

SurfaceProjection::Point SurfaceProjection::at(double x, double y, double z) const {
  const Point point = unscaled(x, y, z);
  return {offsetX_ + scale_ * point.x, offsetY_ + scale_ * point.y};
}

}  // namespace plumetta
