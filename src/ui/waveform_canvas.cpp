// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/waveform_canvas.h"

#include <wx/menu.h>

#include <algorithm>
#include <cmath>

#include "doc/ruler_ticks.h"
#include "ui/lane_painter.h"
#include "ui/sample_drag.h"
#include "ui/selection_drag.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kGridFromHeight = 48;  // lower lanes carry no grid
constexpr int kEdgeReach = 4;
constexpr int kSampleReach = 6;
constexpr int kLeastGridDistance = 4;  // pixels; closer lines would be a veil

}  // namespace

WaveformCanvas::WaveformCanvas(wxWindow* parent, WaveView& view)
    : ViewWindow(parent, view, wxWANTS_CHARS),
      envelope_(
          view, [this] { return lanes(); }, FromDIP(1)) {
  SetName("Waveform");
  Bind(wxEVT_LEFT_DOWN, &WaveformCanvas::onLeftDown, this);
  Bind(wxEVT_LEFT_DCLICK, &WaveformCanvas::onDoubleClick, this);
  Bind(wxEVT_MOTION, &WaveformCanvas::onMove, this);
  Bind(wxEVT_KEY_DOWN, &WaveformCanvas::onKey, this);
  Bind(wxEVT_CONTEXT_MENU, &WaveformCanvas::onContextMenu, this);
  for (const auto& type : {wxEVT_SET_FOCUS, wxEVT_KILL_FOCUS}) {
    Bind(type, [this](wxFocusEvent& event) {
      Refresh(false);
      event.Skip();
    });
  }
}

LaneLayout WaveformCanvas::lanes() const { return {doc().wave().channels(), GetClientSize().y, FromDIP(1)}; }

AmplitudeScale WaveformCanvas::amplitudeScale(int lane) const {
  const LaneLayout layout = lanes();
  return {static_cast<double>(layout.top(lane)), static_cast<double>(layout.laneHeight(lane)),
          view_.amplitudeZoom()};
}

// ---- Drawing --------------------------------------------------------------------------------------------

void WaveformCanvas::paint(wxGraphicsContext& gc, const wxRect& area) {
  const LaneLayout layout = lanes();
  const ViewState& state = doc().view();
  const FrameScale scale = view_.scale();
  fillRect(gc, theme().lane, area.x, area.y, area.width, area.height);
  if (state.hasSelection()) {
    const double from = std::max(snapped(scale.x(state.lowerBound())), area.x - 1.0);
    const double to = std::min(snapped(scale.x(state.upperBound())) + hairline(), area.GetRight() + 2.0);
    if (to > from) fillRect(gc, theme().laneSelected, from, area.y, to - from, area.height);
  }
  LanePainter painter(gc, view_, 1 / deviceScale(), area.x, area.x + area.width);
  for (int lane = 0; lane < layout.lanes; ++lane) {
    paintGrid(gc, amplitudeScale(lane), area);
    painter.paint(lane, amplitudeScale(lane));
    if (lane > 0) fillRect(gc, theme().line, area.x, layout.top(lane) - layout.gap, area.width, layout.gap);
  }
  paintSelectionGrid(gc, area);
  paintAnnotations(gc, area);
  paintDraggedSample(gc);
  envelope_.paint(gc, area.x, area.x + area.width);
  const double cursor = snapped(scale.x(state.cursor));
  fillRect(gc, theme().cursor, cursor, area.y, hairline(), area.height);
  paintPlayCursor(gc, area);
  if (HasFocus()) paintFocus(gc);
}

void WaveformCanvas::paintGrid(wxGraphicsContext& gc, const AmplitudeScale& lane, const wxRect& area) {
  const bool fine = lane.height >= FromDIP(kGridFromHeight);
  for (const AmplitudeTick& tick :
       amplitudeTicks(fine ? lane.height : 0, view_.amplitudeZoom(), view_.decibels(), FromDIP(24))) {
    const double y = std::min(snapped(lane.y(tick.value)), lane.top + lane.height - hairline());
    fillRect(gc, tick.value == 0 ? theme().zero : theme().grid, area.x, y, area.width, hairline());
  }
}

void WaveformCanvas::paintSelectionGrid(wxGraphicsContext& gc, const wxRect& area) {
  const ViewState& state = doc().view();
  if (!view_.settings.selectionGrid || !state.hasSelection()) return;
  const FrameScale scale = view_.scale();
  const int parts = view_.settings.selectionGridParts;
  const double step = (double{1} * state.upperBound() - state.lowerBound()) / parts;
  if (step / scale.framesPerPixel < FromDIP(kLeastGridDistance)) return;
  for (int part = 1; part < parts; ++part) {
    const double x = snapped(scale.x(state.lowerBound() + part * step));
    if (x < area.x - 1 || x > area.x + area.width) continue;
    fillRect(gc, withAlpha(theme().accent, 0x90), x, area.y, hairline(), area.height);
  }
}

void WaveformCanvas::paintDraggedSample(wxGraphicsContext& gc) {
  if (!view_.preview.sample) return;
  const auto& [frame, channel, value] = *view_.preview.sample;
  const double radius = FromDIP(kSampleReach) / 1.5;
  gc.SetPen(wxNullPen);
  gc.SetBrush(wxBrush(theme().accent));
  gc.DrawEllipse(view_.scale().x(frame) - radius, amplitudeScale(channel).y(value) - radius, 2 * radius,
                 2 * radius);
}

void WaveformCanvas::paintAnnotations(wxGraphicsContext& gc, const wxRect& area) {
  const FrameScale scale = view_.scale();
  const auto line = [&](int32_t frame, const wxColour& colour) {
    const double x = snapped(scale.x(frame));
    if (x < area.x - 2 || x > area.x + area.width + 1) return;
    fillRect(gc, colour, x, area.y, hairline(), area.height);
  };
  for (int i = 0; i < doc().wave().loops.count(); ++i) {
    const auto [start, end] = view_.loopRange(i);
    line(start, withAlpha(theme().loop, 0xB0));
    line(end, withAlpha(theme().loop, 0xB0));
  }
  for (int i = 0; i < doc().wave().markers.count(); ++i) {
    line(view_.markerFrame(i), doc().selectedMarker == i ? theme().marker : withAlpha(theme().marker, 0xA0));
  }
}

void WaveformCanvas::paintFocus(wxGraphicsContext& gc) {
  const double width = hairline();
  const wxSize size = GetClientSize();
  fillRect(gc, theme().accent, 0, 0, size.x, width);
  fillRect(gc, theme().accent, 0, size.y - width, size.x, width);
  fillRect(gc, theme().accent, 0, 0, width, size.y);
  fillRect(gc, theme().accent, size.x - width, 0, width, size.y);
}

// ---- Mouse ----------------------------------------------------------------------------------------------

std::optional<RangeEdge> WaveformCanvas::selectionEdgeAt(int x) const {
  const ViewState& state = doc().view();
  if (!state.hasSelection()) return std::nullopt;
  return edgeAt(view_.scale(), state.lowerBound(), state.upperBound(), x, FromDIP(kEdgeReach));
}

std::optional<EnvelopeLayer::Hit> WaveformCanvas::envelopeAt(const wxPoint& at) const {
  return view_.settings.envelopeLocked ? std::nullopt : envelope_.hitAt(at);
}

std::optional<WaveformCanvas::SampleHit> WaveformCanvas::sampleAt(const wxPoint& at) const {
  const FrameScale scale = view_.scale();
  const auto lane = lanes().laneAt(at.y);
  if (view_.settings.samplesLocked || !lane || !LanePainter::showsSamples(scale)) return std::nullopt;
  const int64_t frame = scale.nearestFrame(at.x);
  if (frame < 0 || frame >= doc().wave().frames()) return std::nullopt;
  const SampleHit hit{static_cast<int32_t>(frame), *lane};
  const double y = amplitudeScale(*lane).y(doc().wave().sample(hit.frame, hit.channel));
  const double distance = std::hypot(scale.x(static_cast<double>(frame)) - at.x, y - at.y);
  return distance <= FromDIP(kSampleReach) ? std::optional(hit) : std::nullopt;
}

bool WaveformCanvas::grabAt(const wxPoint& at) {
  if (const auto hit = envelopeAt(at)) {
    if (auto drag = envelope_.beginDrag(*hit, at)) startDrag(std::move(drag));
    return true;
  }
  const auto sample = sampleAt(at);
  if (!sample) return false;
  const auto [frame, channel] = *sample;
  startDrag(std::make_unique<SampleDrag>(view_, frame, channel, amplitudeScale(channel)));
  return true;
}

int32_t WaveformCanvas::extendSelectionTo(int32_t frame) {
  const ViewState& state = doc().view();
  int32_t fixed = state.cursor;
  if (state.hasSelection()) {
    const bool nearLower =
        std::abs(int64_t{frame} - state.lowerBound()) < std::abs(int64_t{frame} - state.upperBound());
    fixed = nearLower ? state.upperBound() : state.lowerBound();
  }
  doc().select(fixed, frame);
  doc().setCursor(frame);
  return fixed;
}

void WaveformCanvas::onLeftDown(wxMouseEvent& event) {
  SetFocus();
  if (doc().selectedMarker) {
    doc().selectedMarker.reset();
    if (view_.onPreviewChanged) view_.onPreviewChanged();
  }
  const wxPoint at = event.GetPosition();
  if (!event.ShiftDown() && grabAt(at)) return;
  if (doc().wave().frames() == 0) return;
  const ViewState state = doc().view();
  const int32_t frame = doc().clampFrame(view_.scale().nearestFrame(at.x));
  int32_t fixed = view_.selectionEnd(frame);
  if (const auto edge = selectionEdgeAt(at.x); edge && !event.ShiftDown()) {
    fixed = *edge == RangeEdge::lower ? state.upperBound() : state.lowerBound();
  } else if (event.ShiftDown()) {
    fixed = extendSelectionTo(view_.selectionEnd(frame));
  } else {
    doc().select(frame, frame);
    doc().setCursor(frame);
  }
  startDrag(std::make_unique<SelectionDrag>(view_, state, fixed, at.x, FromDIP(3)));
}

void WaveformCanvas::selectRegionAt(int64_t frame) {
  const auto at = static_cast<int32_t>(std::min<int64_t>(frame, kMaxFrames - 1));
  const auto from = doc().wave().markers.previousBefore(at + 1);
  const auto to = doc().wave().markers.nextAfter(at);
  doc().select(from ? from->position : 0, to ? to->position : doc().lastFrame());
  doc().setCursor(doc().view().lowerBound());
}

void WaveformCanvas::onDoubleClick(wxMouseEvent& event) {
  cancelDrag();
  if (envelopeAt(event.GetPosition()) || doc().wave().frames() == 0) return;
  selectRegionAt(doc().clampFrame(view_.scale().nearestFrame(event.GetX())));
}

void WaveformCanvas::onMove(wxMouseEvent& event) {
  event.Skip();
  if (dragging()) return;
  if (envelopeAt(event.GetPosition()) || sampleAt(event.GetPosition())) {
    SetCursor(wxCursor(wxCURSOR_HAND));
  } else if (selectionEdgeAt(event.GetX())) {
    SetCursor(wxCursor(wxCURSOR_SIZEWE));
  } else {
    SetCursor(wxCursor(wxCURSOR_IBEAM));
  }
}

void WaveformCanvas::addEditItems(wxMenu& menu) {
  const auto add = [&](const char* id, bool possible) {
    wxMenuItem* item = menu.Append(wxID_ANY, toWx(findCommand(id)->menuText));
    item->Enable(possible);
    menu.Bind(
        wxEVT_MENU, [this, id](wxCommandEvent&) { view_.run(id); }, item->GetId());
  };
  const bool selected = doc().view().hasSelection();
  add("cut", selected);
  add("copy", selected);
  add("paste", doc().services().clipboard != nullptr);
  add("delete", selected);
  menu.AppendSeparator();
}

void WaveformCanvas::addMarkerItems(wxMenu& menu, int32_t frame) {
  const auto add = [&](const char* text, auto action) {
    menu.Bind(
        wxEVT_MENU, [action](wxCommandEvent&) { action(); }, menu.Append(wxID_ANY, text)->GetId());
  };
  add("Add &marker here", [this, frame] { view_.run("marker", FrameOrTime{static_cast<double>(frame)}); });
  add("&Select region", [this, frame] { selectRegionAt(frame); });
  menu.AppendSeparator();
  if (doc().view().hasSelection()) add("&Zoom to selection", [this] { view_.zoomToSelection(); });
  add("Show &all", [this] { view_.zoomAll(); });
}

void WaveformCanvas::onContextMenu(wxContextMenuEvent& event) {
  cancelDrag();
  if (doc().wave().frames() == 0) return;
  // From the keyboard it belongs to the cursor.
  const bool byKey = event.GetPosition() == wxDefaultPosition;
  const wxPoint atCursor(static_cast<int>(std::clamp(view_.scale().x(doc().view().cursor), 0.0, 1e5)),
                         GetClientSize().y / 2);
  const wxPoint at = byKey ? atCursor : ScreenToClient(event.GetPosition());
  if (!byKey && !view_.settings.popupOnRightClick) {
    extendSelectionTo(view_.selectionEnd(doc().clampFrame(view_.scale().nearestFrame(at.x))));
    return;
  }
  wxMenu menu;
  addEditItems(menu);
  if (envelope_.addMenuItems(menu, at)) menu.AppendSeparator();
  addMarkerItems(menu, byKey ? doc().view().cursor : doc().clampFrame(view_.scale().nearestFrame(at.x)));
  PopupMenu(&menu, at);
}

}  // namespace plumetta
