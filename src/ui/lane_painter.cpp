// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/lane_painter.h"

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

constexpr double kLineBelow = 1.0;           // frames a pixel
constexpr double kSamplesBelow = 1.0 / 6.0;  // frames a pixel
constexpr double kSmoothTravel = 40000;      // pixels up and down that antialiased lines may go in a window
constexpr double kClipMark = 2;              // pixels, at least
constexpr double kRmsFrom = 12.0;            // fewer frames in a column have no body worth the name

}  // namespace

// Columns of one look are drawn in one go, each as an upright line of a device pixel: of all shapes that one
// goes fastest through a graphics context.
struct LanePainter::Paths {
  wxGraphicsPath peak, rms, clip;
};

LanePainter::LanePainter(wxGraphicsContext& gc, WaveView& view, double columnWidth, int left, int right)
    : gc_(gc), view_(view), scale_(view.scale()), columnWidth_(columnWidth), left_(left), right_(right) {}

bool LanePainter::showsSamples(const FrameScale& scale) { return scale.framesPerPixel < kSamplesBelow; }

void LanePainter::paint(int channel, const AmplitudeScale& lane) {
  if (view_.doc.wave().frames() == 0 || lane.height <= 0) return;
  gc_.Clip(left_, lane.top, right_ - left_, lane.height);
  const bool active = view_.doc.wave().isActive(channel);
  if (scale_.framesPerPixel < kLineBelow && !steep(channel, lane)) {
    paintLine(channel, lane, active);
  } else {
    paintColumns(channel, lane, active);
  }
  if (showsSamples(scale_)) paintSamples(channel, lane, active);
  gc_.ResetClip();
}

int32_t LanePainter::frameNear(double frame) const {
  return static_cast<int32_t>(std::clamp(frame, 0.0, static_cast<double>(view_.doc.wave().frames() - 1)));
}

// Whether the window's line goes up and down so much that smooth edges would cost more time than they are
// worth. Asked of the whole window, so that every part of it that is painted by itself looks the same.
bool LanePainter::steep(int channel, const AmplitudeScale& lane) const {
  const CWave& wave = view_.doc.wave();
  const int32_t to = frameNear(std::ceil(scale_.frame(view_.width())));
  double travel = 0;
  for (int32_t f = frameNear(scale_.first); f < to; ++f) {
    const double step = std::abs(wave.sample(f + 1, channel) - wave.sample(f, channel));
    if (step > 0) travel += std::min(step * lane.zoom, 2.0);  // false for what is not a number
  }
  return travel * lane.height / 2 > kSmoothTravel / wave.channels();
}

void LanePainter::peakColumns(int channel, int64_t first) {
  const double framesPerColumn = scale_.framesPerPixel * columnWidth_;
  const double firstFrame = scale_.first + static_cast<double>(first) * framesPerColumn;
  view_.doc.peaks().columns(view_.doc.wave(), channel, firstFrame, framesPerColumn, columns_);
}

// What a line through the samples covers in each column.
void LanePainter::lineColumns(int channel, int64_t first) {
  const CWave& wave = view_.doc.wave();
  const auto valueAt = [&](double frame) {
    const int32_t left = frameNear(std::floor(frame));
    const float a = wave.sample(left, channel);
    const float b = wave.sample(frameNear(left + 1.0), channel);
    const double value = a + (b - a) * std::clamp(frame - left, 0.0, 1.0);
    return std::isnan(value) ? 0.0f : static_cast<float>(value);
  };
  double from = scale_.frame(static_cast<double>(first) * columnWidth_);
  float before = valueAt(from);
  for (PeakColumn& column : columns_) {
    const double to = from + scale_.framesPerPixel * columnWidth_;
    const float after = valueAt(to);
    column = {std::min(before, after), std::max(before, after), 0};
    const double inner = std::ceil(from);  // columns are narrower than the way between samples, or as wide
    if (inner < to) {
      column.min = std::min(column.min, valueAt(inner));
      column.max = std::max(column.max, valueAt(inner));
    }
    from = to;
    before = after;
  }
}

void LanePainter::addColumn(Paths& paths, const AmplitudeScale& lane, double x, const PeakColumn& column,
                            float low, float high) const {
  const auto bounded = [&](double value) {
    return std::clamp(lane.y(value), lane.top, lane.top + lane.height);
  };
  double top = bounded(high);
  double bottom = bounded(low);
  if (bottom - top < columnWidth_) {  // silence is still a line
    top = (top + bottom - columnWidth_) / 2;
    bottom = top + columnWidth_;
  }
  const auto add = [&](wxGraphicsPath& path, double from, double to) {
    if (to <= from) return;
    path.MoveToPoint(x, from);
    path.AddLineToPoint(x, to);
  };
  add(paths.peak, top, bottom);
  if (scale_.framesPerPixel >= kRmsFrom) {
    add(paths.rms, std::max(bounded(column.rms), top), std::min(bounded(-column.rms), bottom));
  }
  if (column.max > 1) add(paths.clip, top, std::max(bounded(1), top + kClipMark));
  if (column.min < -1) add(paths.clip, std::min(bounded(-1), bottom - kClipMark), bottom);
}

void LanePainter::paintColumns(int channel, const AmplitudeScale& lane, bool active) {
  // One more to the left, to join the first column to.
  const int64_t first = static_cast<int64_t>(std::floor(left_ / columnWidth_)) - 1;
  const auto count = static_cast<size_t>(std::ceil((right_ - left_) / columnWidth_)) + 2;
  columns_.resize(count);
  if (scale_.framesPerPixel < kLineBelow) {
    lineColumns(channel, first);
  } else {
    peakColumns(channel, first);
  }

  const ViewState& state = view_.doc.view();
  const double selectedFrom = state.hasSelection() ? scale_.x(state.lowerBound()) : 1e18;
  const double selectedTo = state.hasSelection() ? scale_.x(state.upperBound()) : 1e18;
  const double end = scale_.x(view_.doc.wave().frames() - 1) + columnWidth_;
  Paths plain{gc_.CreatePath(), gc_.CreatePath(), gc_.CreatePath()};
  Paths selected{gc_.CreatePath(), gc_.CreatePath(), gc_.CreatePath()};
  for (size_t i = 1; i < count; ++i) {
    const double x = static_cast<double>(first + static_cast<int64_t>(i)) * columnWidth_;
    if (x >= end) break;
    // A steep slope between two columns must not tear; before the first one there is nothing to join.
    const bool joined = x > 0 || scale_.first > 0;
    const float low = joined ? std::min(columns_[i].min, columns_[i - 1].max) : columns_[i].min;
    const float high = joined ? std::max(columns_[i].max, columns_[i - 1].min) : columns_[i].max;
    addColumn(x >= selectedFrom && x <= selectedTo ? selected : plain, lane, x + columnWidth_ / 2,
              columns_[i], low, high);
  }

  const Theme& theme = view_.theme;
  gc_.SetAntialiasMode(wxANTIALIAS_NONE);
  const auto draw = [&](const wxGraphicsPath& path, const wxColour& colour) {
    gc_.SetPen(gc_.CreatePen(wxGraphicsPenInfo(colour).Width(columnWidth_).Cap(wxCAP_BUTT)));
    gc_.StrokePath(path);
  };
  // Without a body inside, the columns themselves are the body.
  const bool solid = scale_.framesPerPixel < kRmsFrom;
  const wxColour off = solid ? theme.rmsOff : theme.peakOff;
  draw(plain.peak, !active ? off : solid ? theme.rms : theme.peak);
  draw(selected.peak, !active ? off : solid ? theme.rmsSelected : theme.peakSelected);
  draw(plain.rms, active ? theme.rms : theme.rmsOff);
  draw(selected.rms, active ? theme.rmsSelected : theme.rmsOff);
  draw(plain.clip, theme.clip);
  draw(selected.clip, theme.clip);
  gc_.SetAntialiasMode(wxANTIALIAS_DEFAULT);
}

void LanePainter::paintLine(int channel, const AmplitudeScale& lane, bool active) {
  const CWave& wave = view_.doc.wave();
  const int32_t from = frameNear(std::floor(scale_.frame(left_)) - 1);
  const int32_t to = frameNear(std::ceil(scale_.frame(right_)) + 1);
  // Coordinates far outside of the window are of no use to anybody's rasteriser; a gap where there is no
  // number.
  const auto y = [&](float value) { return std::clamp(lane.y(value), lane.top - 1e4, lane.top + 1e4); };
  wxGraphicsPath path = gc_.CreatePath();
  bool pen = false;
  for (int32_t f = from; f <= to; ++f) {
    const float value = wave.sample(f, channel);
    if (std::isnan(value)) {
      pen = false;
    } else if (!std::exchange(pen, true)) {
      path.MoveToPoint(scale_.x(f), y(value));
    } else {
      path.AddLineToPoint(scale_.x(f), y(value));
    }
  }
  const wxColour colour = active ? view_.theme.rms : view_.theme.rmsOff;
  gc_.SetPen(gc_.CreatePen(wxGraphicsPenInfo(colour).Width(1.25).Join(wxJOIN_ROUND)));
  gc_.StrokePath(path);
}

void LanePainter::paintSamples(int channel, const AmplitudeScale& lane, bool active) {
  const CWave& wave = view_.doc.wave();
  const int32_t from = frameNear(std::floor(scale_.frame(left_)) - 1);
  const int32_t to = frameNear(std::ceil(scale_.frame(right_)) + 1);
  const double radius = std::clamp(0.22 / scale_.framesPerPixel, 1.5, 3.0);
  gc_.SetPen(wxNullPen);
  wxGraphicsPath dots = gc_.CreatePath();
  wxGraphicsPath clipped = gc_.CreatePath();
  for (int32_t f = from; f <= to; ++f) {
    const float value = wave.sample(f, channel);
    if (std::isnan(value)) continue;
    const double y = std::clamp(lane.y(value), lane.top, lane.top + lane.height);
    (std::abs(value) > 1 ? clipped : dots).AddCircle(scale_.x(f), y, radius);
  }
  gc_.SetBrush(wxBrush(active ? view_.theme.rms : view_.theme.rmsOff));
  gc_.FillPath(dots, wxWINDING_RULE);
  gc_.SetBrush(wxBrush(view_.theme.clip));
  gc_.FillPath(clipped, wxWINDING_RULE);
}

}  // namespace plumetta
