// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// From where a box is looked at. Angles in radians.
struct SurfaceCamera {
  double turn = -0.5;  // about the upright axis
  double tilt = 0.6;   // above the horizon
  double zoom = 1.0;

  // Brought to where the box can be seen from above.
  SurfaceCamera bounded() const;
};

// The perspective picture of a box that is 2 wide (x from -1 to 1), 2 × kDepth deep (y to the back) and
// kHeight high (z from 0), fitted into a window at zoom 1.
class SurfaceProjection {
 public:
  static constexpr double kDepth = 0.8;
  static constexpr double kHeight = 0.5;

  struct Point {
    double x, y;  // pixels, downwards
  };

  // In pixels; the margins stay free on either side, and above and below.
  SurfaceProjection(const SurfaceCamera& camera, double width, double height, double sideMargin,
                    double upperMargin);

  Point at(double x, double y, double z) const;
  // Over which point of the floor the eye stands, outside of the box.
  double eyeX() const { return eyeX_; }
  double eyeY() const { return eyeY_; }

 private:
  Point unscaled(double x, double y, double z) const;

  double turnSine_, turnCosine_, tiltSine_, tiltCosine_;
  double eyeX_, eyeY_;
  double scale_ = 1.0, offsetX_ = 0.0, offsetY_ = 0.0;
};

}  // namespace plumetta
