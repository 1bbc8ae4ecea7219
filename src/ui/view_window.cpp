// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/view_window.h"

#include <wx/dcbuffer.h>

#include <algorithm>
#include <cmath>

#include "ui/draw_at_once.h"

namespace plumetta {
namespace {

constexpr int kAutoscrollMilliseconds = 30;
// Deep in a long file an edge may lie beyond what a rasteriser can count.
constexpr double kFar = 1e5;
// Pixels that are painted on either side of what is seen: GDI+ may leave out paths of very few columns.
constexpr int kPaintMargin = 4;
constexpr double kSettingDistance = 20;  // pixels outside of the window at which the setting is the speed

}  // namespace

ViewWindow::ViewWindow(wxWindow* parent, WaveView& view, long style)
    : wxWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, style | wxFULL_REPAINT_ON_RESIZE),
      view_(view),
      autoscroll_(this) {
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  // Never seen, but asked for at each painting.
  SetForegroundColour(view.theme.text);
  SetBackgroundColour(view.theme.margin);
  Bind(wxEVT_PAINT, &ViewWindow::onPaint, this);
  Bind(wxEVT_MOTION, &ViewWindow::onMotion, this);
  Bind(wxEVT_LEFT_UP, &ViewWindow::onLeftUp, this);
  Bind(wxEVT_MOUSEWHEEL, &ViewWindow::onWheel, this);
  Bind(wxEVT_TIMER, &ViewWindow::onTimer, this);
  Bind(wxEVT_MOUSE_CAPTURE_LOST, [this](wxMouseCaptureLostEvent&) { cancelDrag(); });
}

void ViewWindow::onPaint(wxPaintEvent&) {
  wxAutoBufferedPaintDC dc(this);
  const std::unique_ptr<wxGraphicsContext> gc(wxGraphicsContext::CreateFromUnknownDC(dc));
  if (!gc) return;
  wxRect area = GetUpdateRegion().GetBox();
  if (area.IsEmpty()) area = GetClientRect();
  paint(*gc, area.Inflate(kPaintMargin, 0).Intersect(GetClientRect()));
}

void ViewWindow::follow() {
  const ViewState now = doc().view();
  const ViewState before = std::exchange(shown_, now);
  const auto scale = ownScale();
  const auto scaleBefore = std::exchange(shownScale_, scale);
  if (!scale) return;
  if (scale != scaleBefore) {
    Refresh(false);
    return;
  }
  const auto refreshFrames = [&](int32_t a, int32_t b) {
    if (a == b) return;
    refreshColumns(scale->x(std::min(a, b)) - reach(), scale->x(std::max(a, b)) + reach());
  };
  if (before.cursor != now.cursor) {
    refreshColumns(scale->x(before.cursor) - reach(), scale->x(before.cursor) + reach());
    refreshColumns(scale->x(now.cursor) - reach(), scale->x(now.cursor) + reach());
  }
  if (before.hasSelection() && now.hasSelection()) {
    refreshFrames(before.lowerBound(), now.lowerBound());
    refreshFrames(before.upperBound(), now.upperBound());
  } else {
    refreshFrames(before.selectionStart, before.selectionEnd);
    refreshFrames(now.selectionStart, now.selectionEnd);
  }
}

std::optional<double> ViewWindow::playX() const {
  const auto scale = ownScale();
  if (!scale || !view_.playFrame) return std::nullopt;
  return snapped(std::clamp(scale->x(*view_.playFrame), -kFar, kFar));
}

void ViewWindow::followPlayFrame() {
  const auto now = playX();
  const auto before = std::exchange(shownPlayX_, now);
  if (now == before) return;
  for (const auto& x : {before, now}) {
    if (!x) continue;
    const wxRect area = columns(*x, *x + hairline());
    drawAtOnce(*this, area, [&](wxGraphicsContext& gc) { paint(gc, area); });
  }
}

void ViewWindow::paintPlayCursor(wxGraphicsContext& gc, const wxRect& area) const {
  if (const auto x = playX()) fillRect(gc, theme().playCursor, *x, area.y, hairline(), area.height);
}

wxRect ViewWindow::columns(double from, double to) const {
  const int left = static_cast<int>(std::clamp(std::floor(from), 0.0, 1e6));
  const int right = static_cast<int>(std::clamp(std::ceil(to) + 1, 0.0, 1e6));
  return GetClientRect().Intersect(wxRect(left, 0, right - left, GetClientSize().y));
}

void ViewWindow::refreshColumns(double from, double to) {
  const wxRect area = columns(from, to);
  if (!area.IsEmpty()) RefreshRect(area, false);
}

double ViewWindow::snapped(double at) const { return std::round(at * deviceScale()) / deviceScale(); }

double ViewWindow::hairline() const {
  return std::max(std::round(FromDIP(1) * deviceScale()), 1.0) / deviceScale();
}

wxFont ViewWindow::smallFont() const {
  wxFont font = GetFont();
  font.SetFractionalPointSize(font.GetFractionalPointSize() * 0.82);
  return font;
}

void ViewWindow::startDrag(std::unique_ptr<Drag> drag) {
  drag_ = std::move(drag);
  if (!HasCapture()) CaptureMouse();
  autoscroll_.Start(kAutoscrollMilliseconds);
}

void ViewWindow::onMotion(wxMouseEvent& event) {
  if (drag_) drag_->move(event.GetPosition(), event.ShiftDown());
  event.Skip();
}

void ViewWindow::onLeftUp(wxMouseEvent& event) {
  if (drag_) {
    // A drop may run a command whose message loop paints this window again.
    const auto drag = std::move(drag_);
    endDrag();
    drag->drop();
  }
  event.Skip();
}

void ViewWindow::onWheel(wxMouseEvent& event) {
  const double notches = static_cast<double>(event.GetWheelRotation()) / std::max(event.GetWheelDelta(), 1);
  const bool sideways = event.GetWheelAxis() == wxMOUSE_WHEEL_HORIZONTAL;
  if (event.ControlDown()) {
    view_.setAmplitudeZoom(view_.amplitudeZoom() * std::exp2(notches / 2));
  } else if (event.ShiftDown() || sideways) {
    view_.scrollBy((sideways ? notches : -notches) * view_.width() / 10);
  } else if (!view_.settings.zoomAtPointer) {
    view_.zoomBy(std::exp2(notches / 2));
  } else {
    // Where the lanes don't lie under the pointer their middle is held.
    const double held = ownScale() == view_.scale() ? event.GetX() : view_.width() / 2.0;
    view_.zoomAbout(held, std::exp2(notches / 2));
  }
}

void ViewWindow::onTimer(wxTimerEvent&) {
  if (!drag_ || ownScale() != view_.scale()) return;
  const wxMouseState mouse = wxGetMouseState();
  const wxPoint at = ScreenToClient(mouse.GetPosition());
  const int beyond = at.x < 0 ? at.x : std::max(at.x - GetClientSize().x + 1, 0);
  if (beyond == 0) return;
  const double pixelsPerTick = view_.settings.dragScrollSpeed * kAutoscrollMilliseconds / 1000.0;
  view_.scrollBy(FromDIP(1) * pixelsPerTick * beyond / FromDIP(kSettingDistance));
  drag_->move(at, mouse.ShiftDown());
}

bool ViewWindow::cancelDrag() {
  if (!drag_) return false;
  const auto drag = std::move(drag_);
  endDrag();
  drag->cancel();
  return true;
}

void ViewWindow::endDrag() {
  drag_.reset();
  autoscroll_.Stop();
  if (HasCapture()) ReleaseMouse();
}

void fillRect(wxGraphicsContext& gc, const wxColour& colour, double x, double y, double width,
              double height) {
  const double left = std::max(x, -kFar);
  const double right = std::min(x + width, kFar);
  if (right <= left || height <= 0) return;
  gc.SetPen(wxNullPen);
  gc.SetBrush(wxBrush(colour));
  gc.DrawRectangle(left, y, right - left, height);
}

wxColour withAlpha(const wxColour& colour, unsigned char alpha) {
  return wxColour(colour.Red(), colour.Green(), colour.Blue(), alpha);
}

wxString fromUtf8(const std::string& text) { return wxString::FromUTF8(text); }

}  // namespace plumetta
