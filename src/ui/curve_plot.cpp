// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/curve_plot.h"

#include <wx/app.h>
#include <wx/dcbuffer.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>

#include "doc/ruler_ticks.h"
#include "ui/view_window.h"

namespace plumetta {
namespace {

constexpr int kLeft = 44;    // room for levels
constexpr int kBottom = 22;  // and for frequencies
constexpr int kEdge = 10;    // on the other sides
constexpr int kLabelDistance = 36;
constexpr int kLevelDistance = 26;
constexpr auto kSamplingTime = std::chrono::milliseconds(12);
// Levels beyond the axis are drawn out of sight, yet not farther than a rasteriser can count.
constexpr double kFar = 20000.0;

}  // namespace

CurvePlot::CurvePlot(wxWindow* parent)
    : wxWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxFULL_REPAINT_ON_RESIZE | wxBORDER_NONE),
      theme_(Theme::current()) {
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  SetMinSize(FromDIP(wxSize(240, 140)));
  Bind(wxEVT_PAINT, &CurvePlot::onPaint, this);
  SetExtraStyle(GetExtraStyle() | wxWS_EX_PROCESS_IDLE);
  Bind(wxEVT_IDLE, &CurvePlot::onIdle, this);
  Bind(wxEVT_MOTION, &CurvePlot::onMotion, this);
  Bind(wxEVT_LEFT_DOWN, &CurvePlot::onLeftDown, this);
  Bind(wxEVT_LEFT_UP, [this](wxMouseEvent&) {
    if (HasCapture()) ReleaseMouse();
    dragFrom_.reset();
  });
  Bind(wxEVT_MOUSE_CAPTURE_LOST, [this](wxMouseCaptureLostEvent&) { dragFrom_.reset(); });
  Bind(wxEVT_LEFT_DCLICK, [this](wxMouseEvent&) { showAxis(whole_); });
  Bind(wxEVT_LEAVE_WINDOW, [this](wxMouseEvent&) { setPointer(std::nullopt); });
  Bind(wxEVT_MOUSEWHEEL, &CurvePlot::onWheel, this);
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    curvesChanged();
    event.Skip();
  });
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    adoptTheme();
    event.Skip();
  });
}

void CurvePlot::adoptTheme() {
  theme_ = Theme::current();
  if (onThemeChanged) onThemeChanged();
  Refresh(false);
}

// ---- What is shown --------------------------------------------------------------------------------------

void CurvePlot::setCurves(std::vector<PlotCurve> curves) {
  curves_ = std::move(curves);
  paths_.resize(curves_.size());
  curvesChanged();
}

void CurvePlot::setFrequencies(const FrequencyAxis& whole) {
  if (whole == whole_) return;
  whole_ = whole;
  showAxis(whole);
}

void CurvePlot::setDecibels(double bottom, double top) {
  bottomDb_ = bottom;
  topDb_ = top;
  curvesChanged();
}

void CurvePlot::setDimmed(bool dimmed) {
  if (dimmed_ == dimmed) return;
  dimmed_ = dimmed;
  Refresh(false);
}

void CurvePlot::setMark(std::optional<double> hz) {
  mark_ = hz;
  if (hz && (*hz < axis_.lowHz || *hz > axis_.highHz)) {
    showAxis(axis_.moved(axis_.fraction(*hz) - 0.5, whole_));
  }
  Refresh(false);
}

void CurvePlot::showAxis(const FrequencyAxis& axis) {
  axis_ = axis;
  curvesChanged();
}

void CurvePlot::curvesChanged() {
  stale_ = true;
  Refresh(false);
}

// ---- Places ---------------------------------------------------------------------------------------------

wxRect CurvePlot::area() const {
  const wxSize size = GetClientSize();
  const int left = FromDIP(kLeft), edge = FromDIP(kEdge), bottom = FromDIP(kBottom);
  return {left, edge, std::max(size.x - left - edge, 1), std::max(size.y - edge - bottom, 1)};
}

double CurvePlot::xOf(double hz) const {
  const wxRect place = area();
  return place.x + std::clamp(axis_.fraction(hz) * place.width, -kFar, kFar);
}

double CurvePlot::yOf(double db) const {
  const wxRect place = area();
  return place.y + std::clamp((topDb_ - db) / (topDb_ - bottomDb_) * place.height, -kFar, kFar);
}

double CurvePlot::snapped(double at) const {
  return std::round(at * GetContentScaleFactor()) / GetContentScaleFactor();
}

double CurvePlot::hairline() const {
  return std::max(std::round(FromDIP(1) * GetContentScaleFactor()), 1.0) / GetContentScaleFactor();
}

wxFont CurvePlot::smallFont() const {
  wxFont font = GetFont();
  font.SetFractionalPointSize(font.GetFractionalPointSize() * 0.85);
  return font;
}

// Of the points that share a device column the loudest is drawn, so that no peak is lost.
CurvePlot::Path CurvePlot::pathOfPoints(const PlotCurve& curve) const {
  // One point beyond either side leads the line to the edge.
  const auto below = [](const PlotCurve::Point& point, double hz) { return point.hz < hz; };
  auto first = std::lower_bound(curve.points.begin(), curve.points.end(), axis_.lowHz, below);
  auto last = std::lower_bound(first, curve.points.end(), axis_.highHz, below);
  if (first != curve.points.begin()) --first;
  if (last != curve.points.end()) ++last;
  Path path;
  double column = -kFar;
  for (auto point = first; point != last; ++point) {
    const double x = xOf(point->hz);
    const double y = yOf(point->db);
    const double own = std::floor(x * GetContentScaleFactor());
    if (own != column || path.empty()) {
      path.emplace_back(x, y);
    } else if (y < path.back().m_y) {
      path.back() = {x, y};
    }
    column = own;
  }
  return path;
}

bool CurvePlot::sampleFunctions() {
  while (sampled_ < curves_.size() && !curves_[sampled_].levelDb) ++sampled_;
  if (sampled_ == curves_.size()) return false;
  const wxRect place = area();
  const double step = 1.0 / GetContentScaleFactor();
  const auto until = std::chrono::steady_clock::now() + kSamplingTime;
  while (std::chrono::steady_clock::now() < until) {
    const double x = static_cast<double>(sampling_.size()) * step;
    if (x > place.width) {
      paths_[sampled_++] = std::exchange(sampling_, {});
      Refresh(false);
      return true;
    }
    const double db = curves_[sampled_].levelDb(axis_.hz(x / place.width));
    sampling_.emplace_back(place.x + x, std::isnan(db) ? db : yOf(db));
  }
  return true;
}

// Points are at hand; functions are asked from now on.
void CurvePlot::renewPaths() {
  stale_ = false;
  sampled_ = 0;
  sampling_.clear();
  for (size_t i = 0; i < curves_.size(); ++i) {
    if (!curves_[i].levelDb) paths_[i] = pathOfPoints(curves_[i]);
  }
  wxWakeUpIdle();
}

void CurvePlot::onIdle(wxIdleEvent& event) {
  if (!stale_ && sampleFunctions()) event.RequestMore();
  event.Skip();
}

// ---- Painting -------------------------------------------------------------------------------------------

void CurvePlot::onPaint(wxPaintEvent&) {
  wxAutoBufferedPaintDC dc(this);
  const std::unique_ptr<wxGraphicsContext> gc(wxGraphicsContext::CreateFromUnknownDC(dc));
  if (gc) paint(*gc);
}

void CurvePlot::paint(wxGraphicsContext& gc) {
  if (stale_) renewPaths();
  const wxSize size = GetClientSize();
  const wxRect place = area();
  fillRect(gc, theme_.margin, 0, 0, size.x, size.y);
  fillRect(gc, theme_.lane, place.x, place.y, place.width, place.height);
  gc.SetFont(smallFont(), theme_.textQuiet);
  paintFrequencies(gc, place);
  paintDecibels(gc, place);
  gc.Clip(place.x, place.y, place.width, place.height);
  for (size_t i = curves_.size(); i-- > 0;) paintCurve(gc, place, curves_[i], paths_[i]);
  if (mark_) paintLine(gc, place, *mark_, theme_.accent);
  if (pointer_) paintLine(gc, place, *pointer_, theme_.cursor);
  gc.ResetClip();
  paintLegend(gc, place);
}

void CurvePlot::paintFrequencies(wxGraphicsContext& gc, const wxRect& place) {
  double free = 0;  // labels of a wide font don't run into each other
  for (const FrequencyTick& tick : frequencyTicks(axis_, place.width, FromDIP(kLabelDistance))) {
    const double x = snapped(xOf(tick.hz));
    fillRect(gc, tick.label.empty() ? theme_.grid : theme_.zero, x, place.y, hairline(), place.height);
    if (tick.label.empty()) continue;
    double width = 0, height = 0;
    gc.GetTextExtent(tick.label, &width, &height);
    const double left = std::min(x - width / 2, GetClientSize().x - width - FromDIP(2));
    if (left < free) continue;
    free = left + width + FromDIP(6);
    gc.DrawText(tick.label, left, place.GetBottom() + FromDIP(4));
  }
}

void CurvePlot::paintDecibels(wxGraphicsContext& gc, const wxRect& place) {
  const double step = decimalStep((topDb_ - bottomDb_) / place.height * FromDIP(kLevelDistance)).size;
  for (double db = std::ceil(bottomDb_ / step) * step; db <= topDb_; db += step) {
    const double y = snapped(yOf(db));
    fillRect(gc, db == 0 ? theme_.zero : theme_.grid, place.x, y, place.width, hairline());
    const wxString label = wxString::Format("%g", db);
    double width = 0, height = 0;
    gc.GetTextExtent(label, &width, &height);
    gc.DrawText(label, place.x - width - FromDIP(6), y - height / 2);
  }
}

void CurvePlot::paintCurve(wxGraphicsContext& gc, const wxRect& place, const PlotCurve& curve,
                           const Path& path) {
  if (path.empty()) return;
  const wxColour colour = dimmed_ ? theme_.peakOff : curve.colour;
  wxGraphicsPath line = gc.CreatePath();
  wxGraphicsPath below = gc.CreatePath();
  const double floor = place.GetBottom() + 1;
  bool open = false;
  double lastX = 0;
  const auto closeArea = [&] {
    if (open) below.AddLineToPoint(lastX, floor);
    open = false;
  };
  for (const wxPoint2DDouble& point : path) {
    if (std::isnan(point.m_y)) {
      closeArea();
      continue;
    }
    if (!open) {
      line.MoveToPoint(point);
      below.MoveToPoint(point.m_x, floor);
      below.AddLineToPoint(point);
    } else {
      line.AddLineToPoint(point);
      below.AddLineToPoint(point);
    }
    open = true;
    lastX = point.m_x;
  }
  closeArea();
  if (!curve.reference) {
    gc.SetBrush(wxBrush(withAlpha(colour, 0x1C)));
    gc.FillPath(below);
  }
  wxPen pen(colour, 1, curve.reference ? wxPENSTYLE_SHORT_DASH : wxPENSTYLE_SOLID);
  pen.SetWidth(std::max(FromDIP(1), 1));
  gc.SetPen(pen);
  gc.StrokePath(line);
}

void CurvePlot::paintLine(wxGraphicsContext& gc, const wxRect& place, double hz, const wxColour& colour) {
  if (hz < axis_.lowHz || hz > axis_.highHz) return;
  fillRect(gc, colour, snapped(xOf(hz)), place.y, hairline(), place.height);
}

void CurvePlot::paintLegend(wxGraphicsContext& gc, const wxRect& place) {
  const double gap = FromDIP(8), sample = FromDIP(16);
  double rowHeight = 0, width = 0;
  int rows = 0;
  for (const PlotCurve& curve : curves_) {
    if (curve.name.empty()) continue;
    double textWidth = 0, height = 0;
    gc.GetTextExtent(curve.name, &textWidth, &height);
    width = std::max(width, textWidth);
    rowHeight = std::max(rowHeight, height + FromDIP(3));
    ++rows;
  }
  if (rows == 0) return;
  const double boxWidth = sample + width + 3 * gap, boxHeight = rows * rowHeight + gap;
  const double left = place.GetRight() - boxWidth - gap, top = place.y + gap;
  fillRect(gc, withAlpha(theme_.margin, 0xD8), left, top, boxWidth, boxHeight);
  double y = top + gap / 2;
  gc.SetFont(smallFont(), theme_.text);
  for (const PlotCurve& curve : curves_) {
    if (curve.name.empty()) continue;
    wxPen pen(curve.colour, FromDIP(2), curve.reference ? wxPENSTYLE_SHORT_DASH : wxPENSTYLE_SOLID);
    gc.SetPen(pen);
    gc.StrokeLine(left + gap, y + rowHeight / 2, left + gap + sample, y + rowHeight / 2);
    gc.DrawText(curve.name, left + 2 * gap + sample, y);
    y += rowHeight;
  }
}

// ---- Mouse ----------------------------------------------------------------------------------------------

void CurvePlot::setPointer(std::optional<double> hz) {
  pointer_ = hz;
  if (onPointer) onPointer(hz);
  Refresh(false);
}

void CurvePlot::onMotion(wxMouseEvent& event) {
  const wxRect place = area();
  const double fraction = static_cast<double>(event.GetX() - place.x) / place.width;
  if (dragFrom_) {
    const double moved = static_cast<double>(*dragFrom_ - event.GetX()) / place.width;
    showAxis(dragAxis_.moved(moved, whole_));
  }
  const bool inside = fraction >= 0 && fraction <= 1;
  setPointer(inside ? std::optional(axis_.hz(fraction)) : std::nullopt);
}

void CurvePlot::onLeftDown(wxMouseEvent& event) {
  dragFrom_ = event.GetX();
  dragAxis_ = axis_;
  if (!HasCapture()) CaptureMouse();
}

void CurvePlot::onWheel(wxMouseEvent& event) {
  const double notches = static_cast<double>(event.GetWheelRotation()) / std::max(event.GetWheelDelta(), 1);
  const wxRect place = area();
  const bool sideways = event.GetWheelAxis() == wxMOUSE_WHEEL_HORIZONTAL;
  if (sideways || event.ShiftDown()) {
    showAxis(axis_.moved((sideways ? notches : -notches) / 10, whole_));
  } else {
    const double at = std::clamp(static_cast<double>(event.GetX() - place.x) / place.width, 0.0, 1.0);
    showAxis(axis_.zoomed(at, std::exp2(notches / 2), whole_));
  }
}

}  // namespace plumetta
