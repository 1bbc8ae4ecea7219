// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/goniometer_view.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "audio/stereo_figures.h"
#include "ui/text.h"
#include "ui/view_window.h"

namespace plumetta {
namespace {

constexpr size_t kDots = 2048;                  // the newest frames that are drawn
constexpr size_t kCorrelated = 8192;            // and those whose likeness is told
constexpr double kReach = std::numbers::sqrt2;  // of both sides at full scale
constexpr int kEdge = 4;
constexpr int kSide = 12;  // free beside the bar of the correlation
constexpr int kBar = 4;

wxString correlationText(double correlation) {
  const wxString figures = wxString::Format("%.2f", std::fabs(correlation));
  if (figures == "0.00") return figures;
  return (correlation < 0 ? toWx("\u2212") : wxString("+")) + figures;
}

}  // namespace

void GoniometerView::paint(wxGraphicsContext& gc, const wxSize& size) {
  gc.SetFont(smallFont(), theme().textQuiet);
  double width = 0, height = 0;
  gc.GetTextExtent("+0", &width, &height);
  const double foot = height + FromDIP(kBar + 2 * kEdge);
  const double radius = std::min<double>(size.x, size.y - foot) / 2 - FromDIP(kEdge);
  fillRect(gc, theme().lane, 0, 0, size.x, size.y - foot);
  paintCorrelation(gc, size, size.y - foot);
  if (radius < FromDIP(kEdge)) return;
  const double x = size.x / 2.0, y = (size.y - foot) / 2;
  paintAxes(gc, x, y, radius);
  paintFrames(gc, x, y, radius);
}

void GoniometerView::paintAxes(wxGraphicsContext& gc, double x, double y, double radius) const {
  fillRect(gc, theme().zero, snapped(x), y - radius, hairline(), 2 * radius);
  fillRect(gc, theme().grid, x - radius, snapped(y), 2 * radius, hairline());
  const double diagonal = radius / std::numbers::sqrt2;
  gc.SetPen(wxPen(theme().grid, std::max(FromDIP(1), 1)));
  gc.StrokeLine(x - diagonal, y - diagonal, x + diagonal, y + diagonal);
  gc.StrokeLine(x - diagonal, y + diagonal, x + diagonal, y - diagonal);
  double width = 0, height = 0;
  gc.GetTextExtent("L", &width, &height);
  gc.DrawText("L", x - diagonal - width, y - diagonal - height / 2);
  gc.DrawText("R", x + diagonal, y - diagonal - height / 2);
}

void GoniometerView::paintFrames(wxGraphicsContext& gc, double x, double y, double radius) const {
  const auto left = trail_.left().last(kDots), right = trail_.right().last(kDots);
  const double dot = 1.5 * hairline();
  gc.Clip(x - radius, y - radius, 2 * radius, 2 * radius);
  wxGraphicsPath path = gc.CreatePath();
  for (size_t i = 0; i < left.size(); ++i) {
    const StereoPoint point = stereoPoint(left[i], right[i]);
    path.AddRectangle(x + point.x / kReach * radius - dot / 2, y - point.y / kReach * radius - dot / 2, dot,
                      dot);
  }
  gc.SetPen(wxNullPen);
  gc.SetBrush(wxBrush(withAlpha(theme().accent, 0xB0)));
  gc.FillPath(path, wxWINDING_RULE);
  gc.ResetClip();
}

void GoniometerView::paintCorrelation(wxGraphicsContext& gc, const wxSize& size, double top) const {
  const double value = correlation(trail_.left().last(kCorrelated), trail_.right().last(kCorrelated));
  const double side = FromDIP(kSide), length = std::max(size.x - 2 * side, 1.0);
  const double middle = side + length / 2, at = middle + value * length / 2;
  const double bar = snapped(top + FromDIP(kEdge));
  fillRect(gc, theme().line, side, bar, length, FromDIP(kBar));
  fillRect(gc, value < 0 ? theme().clip : theme().loop, std::min(middle, at), bar, std::abs(at - middle),
           FromDIP(kBar));
  fillRect(gc, theme().textQuiet, snapped(middle), bar - FromDIP(1), hairline(), FromDIP(kBar + 2));
  const double line = bar + FromDIP(kBar);
  double width = 0, height = 0;
  const auto write = [&](const wxString& text, double part) {
    gc.GetTextExtent(text, &width, &height);
    gc.DrawText(text, std::clamp(side + part * length - width / 2, 0.0, std::max(size.x - width, 0.0)), line);
  };
  write(toWx("\u2212"
             "1"),
        0);
  write("+1", 1);
  gc.SetFont(smallFont(), theme().text);
  write(correlationText(value), 0.5);
}

}  // namespace plumetta
