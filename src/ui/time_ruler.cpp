// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/time_ruler.h"

#include <wx/menu.h>

#include <cmath>

#include "doc/ruler_ticks.h"

namespace plumetta {
namespace {

constexpr int kHeight = 24;
constexpr int kLabelDistance = 88;

class CursorDrag : public Drag {
 public:
  explicit CursorDrag(WaveView& view) : view_(view), before_(view.doc.view().cursor) {}
  void move(const wxPoint& at, bool) override {
    const double x = std::clamp<double>(at.x, 0, view_.width() - 1);
    view_.doc.setCursor(view_.doc.clampFrame(view_.scale().nearestFrame(x)));
  }
  void drop() override {}
  void cancel() override { view_.doc.setCursor(before_); }

 private:
  WaveView& view_;
  int32_t before_;
};

}  // namespace

TimeRuler::TimeRuler(wxWindow* parent, WaveView& view) : ViewWindow(parent, view) {
  SetMinSize(wxSize(-1, FromDIP(kHeight)));
  Bind(wxEVT_LEFT_DOWN, &TimeRuler::onLeftDown, this);
  Bind(wxEVT_CONTEXT_MENU, &TimeRuler::onContextMenu, this);
}

wxString TimeRuler::label(double frame, const TickSpacing& ticks) const {
  return fromUtf8(positionIn(view_.timeFormat(), frame, doc().wave().sampleRate(), ticks.timeDecimals));
}

// Fine steps need wide labels, which need wider steps.
TickSpacing TimeRuler::spacing(wxGraphicsContext& gc) const {
  const FrameScale scale = view_.scale();
  const auto apartBy = [&](double pixels) {
    return ticksIn(view_.timeFormat(), scale.framesPerPixel, doc().wave().sampleRate(), pixels);
  };
  const TickSpacing ticks = apartBy(FromDIP(kLabelDistance));
  double width = 0, height = 0;
  gc.GetTextExtent(label(scale.frame(view_.width()), ticks), &width, &height);
  const double needed = width + FromDIP(20);
  return needed > FromDIP(kLabelDistance) ? apartBy(needed) : ticks;
}

void TimeRuler::paint(wxGraphicsContext& gc, const wxRect& area) {
  const int height = GetClientSize().y;
  const FrameScale scale = view_.scale();
  fillRect(gc, theme().margin, area.x, area.y, area.width, area.height);
  const ViewState& state = doc().view();
  if (state.hasSelection()) {
    const double from = snapped(scale.x(state.lowerBound()));
    fillRect(gc, theme().laneSelected, from, 0, snapped(scale.x(state.upperBound())) - from + hairline(),
             height);
  }
  fillRect(gc, theme().line, area.x, height - hairline(), area.width, hairline());

  gc.SetFont(smallFont(), theme().textQuiet);
  const TickSpacing ticks = spacing(gc);
  const double minor = ticks.major / ticks.minorParts;
  // A label that begins left of the area may reach into it.
  const double begin = scale.frame(area.x) - ticks.major;
  const auto first = std::max<int64_t>(static_cast<int64_t>(std::floor(begin / minor)), 0);
  for (int64_t i = first;; ++i) {
    const double frame = static_cast<double>(i) * minor;
    const double x = snapped(scale.x(frame));
    if (x > area.x + area.width) break;
    const bool major = i % ticks.minorParts == 0;
    const int length = FromDIP(major ? 8 : 4);
    fillRect(gc, major ? theme().textQuiet : theme().line, x, height - length, hairline(), length);
    if (!major) continue;
    gc.DrawText(label(frame, ticks), x + FromDIP(4), FromDIP(2));
  }
  const double cursor = snapped(scale.x(state.cursor)) + hairline() / 2;
  const double arm = FromDIP(4);
  if (cursor < area.x - arm || cursor > area.x + area.width + arm) return;
  wxGraphicsPath head = gc.CreatePath();
  head.MoveToPoint(cursor - arm, height - arm - FromDIP(1));
  head.AddLineToPoint(cursor + arm, height - arm - FromDIP(1));
  head.AddLineToPoint(cursor, height);
  head.CloseSubpath();
  gc.SetBrush(wxBrush(theme().cursor));
  gc.FillPath(head);
}

void TimeRuler::onLeftDown(wxMouseEvent& event) {
  if (doc().wave().frames() == 0) return;
  auto drag = std::make_unique<CursorDrag>(view_);
  drag->move(event.GetPosition(), false);
  startDrag(std::move(drag));
}

void TimeRuler::onContextMenu(wxContextMenuEvent&) {
  wxMenu menu;
  const char* const names[] = {"&Samples", "S&econds", "&Milliseconds", "&Hours, minutes, seconds"};
  for (const TimeFormat format : {kTimeSamples, kTimeSeconds, kTimeMilliseconds, kTimeClock}) {
    wxMenuItem* item = menu.AppendRadioItem(wxID_ANY, names[format]);
    if (view_.timeFormat() == format) item->Check();
    menu.Bind(
        wxEVT_MENU, [this, format](wxCommandEvent&) { view_.setTimeFormat(format); }, item->GetId());
  }
  PopupMenu(&menu);
}

}  // namespace plumetta
