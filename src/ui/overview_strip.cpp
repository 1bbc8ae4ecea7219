// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview_strip.h"

#include <algorithm>
#include <cmath>

namespace plumetta {
namespace {

constexpr int kHeight = 44;
constexpr int kSmallestFrame = 6;  // pixels that the window's frame keeps at any zoom

// Moves the visible window with the pointer.
class WindowDrag : public Drag {
 public:
  WindowDrag(WaveView& view, FrameScale overview, double grip)
      : view_(view), overview_(overview), grip_(grip), before_(view.doc.view()) {}
  void move(const wxPoint& at, bool) override { view_.scrollTo(overview_.frame(at.x) - grip_); }
  void drop() override {}
  void cancel() override { view_.scrollTo(before_.firstVisibleFrame); }

 private:
  WaveView& view_;
  FrameScale overview_;
  double grip_;  // frames from the window's left side to where it is held
  ViewState before_;
};

}  // namespace

OverviewStrip::OverviewStrip(wxWindow* parent, WaveView& view) : ViewWindow(parent, view) {
  SetMinSize(wxSize(-1, FromDIP(kHeight)));
  Bind(wxEVT_LEFT_DOWN, &OverviewStrip::onLeftDown, this);
}

std::optional<FrameScale> OverviewStrip::ownScale() const {
  return fitScale(doc().wave().frames(), GetClientSize().x);
}

void OverviewStrip::follow() {
  ViewWindow::follow();
  if (view_.scale() != std::exchange(shownWindow_, view_.scale())) Refresh(false);
}

void OverviewStrip::paint(wxGraphicsContext& gc, const wxRect& area) {
  const FrameScale scale = *ownScale();
  const int height = GetClientSize().y;
  const ViewState& state = doc().view();
  fillRect(gc, theme().margin, area.x, area.y, area.width, area.height);
  if (state.hasSelection()) {
    const double from = snapped(scale.x(state.lowerBound()));
    const double width = std::max(snapped(scale.x(state.upperBound())) - from, 2 * hairline());
    fillRect(gc, theme().laneSelected, from, 0, width, height);
  }
  if (doc().wave().frames() > 0) paintPeaks(gc, area, scale);
  for (int i = 0; i < doc().wave().markers.count(); ++i) {
    fillRect(gc, theme().marker, snapped(scale.x(view_.markerFrame(i))), 0, hairline(), FromDIP(6));
  }
  fillRect(gc, theme().cursor, snapped(scale.x(state.cursor)), 0, hairline(), height);
  paintWindow(gc, scale);
  paintPlayCursor(gc, area);
  fillRect(gc, theme().line, area.x, height - hairline(), area.width, hairline());
}

void OverviewStrip::paintPeaks(wxGraphicsContext& gc, const wxRect& area, const FrameScale& scale) {
  const double columnWidth = 1 / deviceScale();
  const auto count = static_cast<size_t>(std::ceil(area.width / columnWidth));
  columns_.resize(count);
  all_.assign(count, PeakColumn{});
  for (int channel = 0; channel < doc().wave().channels(); ++channel) {
    doc().peaks().columns(doc().wave(), channel, scale.frame(area.x), scale.framesPerPixel * columnWidth,
                          columns_);
    for (size_t i = 0; i < count; ++i) {
      all_[i].min = std::min(all_[i].min, columns_[i].min);
      all_[i].max = std::max(all_[i].max, columns_[i].max);
    }
  }
  const double middle = GetClientSize().y / 2.0;
  const double reach = middle - FromDIP(4);
  const double end = scale.x(doc().wave().frames() - 1) + columnWidth;
  wxGraphicsPath path = gc.CreatePath();
  for (size_t i = 0; i < count; ++i) {
    const double x = area.x + static_cast<double>(i) * columnWidth;
    if (x >= end) break;
    const double top = middle - reach * std::clamp(all_[i].max, 0.0f, 1.0f);
    const double bottom = middle - reach * std::clamp(all_[i].min, -1.0f, 0.0f);
    path.AddRectangle(x, top, columnWidth, std::max(bottom - top, columnWidth));
  }
  gc.SetPen(wxNullPen);
  gc.SetAntialiasMode(wxANTIALIAS_NONE);
  gc.SetBrush(wxBrush(theme().rms));
  gc.FillPath(path, wxWINDING_RULE);
  gc.SetAntialiasMode(wxANTIALIAS_DEFAULT);
}

void OverviewStrip::paintWindow(wxGraphicsContext& gc, const FrameScale& scale) {
  const FrameScale window = view_.scale();
  if (showsAll(window, doc().wave().frames(), view_.width())) return;
  const wxSize size = GetClientSize();
  double left = snapped(scale.x(window.first));
  double right = snapped(scale.x(window.first + view_.span()));
  const double missing = FromDIP(kSmallestFrame) - (right - left);
  if (missing > 0) left -= missing / 2, right += missing / 2;
  const wxColour veil = withAlpha(theme().margin, 0xA8);
  fillRect(gc, veil, 0, 0, left, size.y);
  fillRect(gc, veil, right, 0, size.x - right, size.y);
  const double width = hairline();
  gc.SetPen(gc.CreatePen(wxGraphicsPenInfo(theme().accent).Width(2 * width)));
  gc.SetBrush(wxBrush(withAlpha(theme().accent, 0x18)));
  gc.DrawRoundedRectangle(left + width, width, right - left - 2 * width, size.y - 2 * width, FromDIP(2));
}

void OverviewStrip::onLeftDown(wxMouseEvent& event) {
  if (doc().wave().frames() == 0) return;
  const FrameScale scale = *ownScale();
  const FrameScale window = view_.scale();
  const double at = scale.frame(event.GetX());
  const double slack = FromDIP(kSmallestFrame) / 2.0 * scale.framesPerPixel;
  const bool held = at >= window.first - slack && at <= window.first + view_.span() + slack;
  auto drag = std::make_unique<WindowDrag>(view_, scale, held ? at - window.first : view_.span() / 2);
  if (!held) drag->move(event.GetPosition(), false);
  startDrag(std::move(drag));
}

}  // namespace plumetta
