// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

namespace plumetta {

// Zoomed in no further than this: one frame fills 48 pixels.
inline constexpr double kClosestZoom = 1.0 / 48.0;

// Which frames a window of some width shows. Frames are points: frame f stands exactly at x(f).
struct FrameScale {
  double first = 0;           // the frame at x = 0
  double framesPerPixel = 1;  // above 0

  double x(double frame) const { return (frame - first) / framesPerPixel; }
  double frame(double x) const { return first + x * framesPerPixel; }
  // The frame that a click at x means.
  int64_t nearestFrame(double x) const;

  bool operator==(const FrameScale&) const = default;
};

// The whole file, its last frame on the last pixel. Files of no or one frame get a scale of their own.
FrameScale fitScale(int32_t frames, int width);
// What is shown for a stored scroll position and zoom (zoom 0: the whole file), brought into the file.
FrameScale shownScale(double first, double framesPerPixel, int32_t frames, int width);
// Magnified `factor` times with the frame under x held in place.
FrameScale zoomedAbout(const FrameScale& scale, double x, double factor, int32_t frames, int width);
// Scrolled as little as it takes to show the frame; far jumps bring it to a quarter of the window.
FrameScale showing(const FrameScale& scale, double frame, int32_t frames, int width);
// Turns the page when what is played passes from the frame `before`, in sight, to `now`, out of sight. What
// has been scrolled away stays away.
FrameScale following(const FrameScale& scale, double before, double now, int32_t frames, int width);
// Whether a scale shows everything there is.
bool showsAll(const FrameScale& scale, int32_t frames, int width);

// The upper end of a selection `factor` times as long from the same lower end, inside the file and at least
// one frame above the lower end, so that it stays a selection.
int32_t scaledUpper(int32_t lower, int32_t upper, double factor, int32_t lastFrame);

enum class RangeEdge { lower, upper };
// The edge of a range that lies within `reach` pixels of x; the nearer one of two.
std::optional<RangeEdge> edgeAt(const FrameScale& scale, int32_t lower, int32_t upper, double x,
                                double reach);

// Lanes of one height each, from the top down, with a line between neighbours.
struct LaneLayout {
  int lanes = 1;
  int height = 0;  // of all of them
  int gap = 1;

  int top(int lane) const;
  int laneHeight(int lane) const { return top(lane + 1) - top(lane) - gap; }
  std::optional<int> laneAt(int y) const;
};

// Amplitudes on a lane's height: ±1/zoom fill it.
struct AmplitudeScale {
  double top = 0;
  double height = 1;
  double zoom = 1;

  double y(double value) const { return top + height * 0.5 * (1.0 - value * zoom); }
  double value(double y) const { return (1.0 - (y - top) / (height * 0.5)) / zoom; }
};

// Envelope values on a lane's height: 1 on top, 0 at the bottom, whatever the amplitude zoom.
struct EnvelopeScale {
  double top = 0;
  double height = 1;

  double y(double value) const { return top + height * (1.0 - value); }
  double value(double y) const;
};

}  // namespace plumetta
