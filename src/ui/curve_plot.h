// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/geometry.h>
#include <wx/graphics.h>
#include <wx/window.h>

#include <functional>
#include <optional>
#include <vector>

#include "doc/frequency_axis.h"
#include "ui/theme.h"

namespace plumetta {

// A level along frequency, drawn from points in the order of their frequencies or from a function, which is
// asked once for each pixel column while nothing else is to be done. Where a level is no number there is a
// gap.
struct PlotCurve {
  struct Point {
    double hz;
    double db;
  };

  wxString name;  // in the legend; empty for none
  wxColour colour;
  bool reference = false;  // drawn thin and dashed, without an area below it
  std::vector<Point> points{};
  std::function<double(double hz)> levelDb{};  // instead of points
};

// Curves over a frequency and a decibel axis. The wheel zooms along frequency about the pointer, dragging
// moves, a double click shows everything again. Painted through a buffer in the system's colours.
class CurvePlot : public wxWindow {
 public:
  explicit CurvePlot(wxWindow* parent);

  void setCurves(std::vector<PlotCurve> curves);
  // All that there is to see; zooming stays within.
  void setFrequencies(const FrequencyAxis& whole);
  void setDecibels(double bottom, double top);
  // Curves that don't count at the moment are grey.
  void setDimmed(bool dimmed);
  bool dimmed() const { return dimmed_; }
  // A frequency that shall stand out, scrolled into sight.
  void setMark(std::optional<double> hz);

  const Theme& theme() const { return theme_; }
  // The frequency below the pointer; none when it has left.
  std::function<void(std::optional<double> hz)> onPointer;
  std::function<void()> onThemeChanged;

 private:
  using Path = std::vector<wxPoint2DDouble>;

  wxRect area() const;
  double xOf(double hz) const;
  double yOf(double db) const;
  double snapped(double at) const;
  double hairline() const;
  wxFont smallFont() const;
  void curvesChanged();
  void adoptTheme();

  void paint(wxGraphicsContext& gc);
  void paintFrequencies(wxGraphicsContext& gc, const wxRect& area);
  void paintDecibels(wxGraphicsContext& gc, const wxRect& area);
  void paintCurve(wxGraphicsContext& gc, const wxRect& area, const PlotCurve& curve, const Path& path);
  void paintLine(wxGraphicsContext& gc, const wxRect& area, double hz, const wxColour& colour);
  void paintLegend(wxGraphicsContext& gc, const wxRect& area);
  Path pathOfPoints(const PlotCurve& curve) const;
  void renewPaths();
  // Some columns of the next function that has no path yet; false when every one has.
  bool sampleFunctions();

  void onPaint(wxPaintEvent&);
  void onIdle(wxIdleEvent& event);
  void onMotion(wxMouseEvent& event);
  void onLeftDown(wxMouseEvent& event);
  void onWheel(wxMouseEvent& event);
  void showAxis(const FrequencyAxis& axis);
  void setPointer(std::optional<double> hz);

  Theme theme_;
  std::vector<PlotCurve> curves_;
  FrequencyAxis whole_, axis_;
  double bottomDb_ = -96.0, topDb_ = 12.0;
  bool dimmed_ = false;
  std::optional<double> mark_, pointer_;

  std::vector<Path> paths_;  // of the curves, in pixels
  bool stale_ = true;        // the paths are not those of curves, axes and size at this moment
  size_t sampled_ = 0;       // the curve whose function is being asked
  Path sampling_;            // what it has said so far

  std::optional<int> dragFrom_;
  FrequencyAxis dragAxis_;
};

}  // namespace plumetta
