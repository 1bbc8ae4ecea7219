// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/marker_strip.h"

#include <wx/dcclient.h>
#include <wx/textdlg.h>

#include <algorithm>
#include <cmath>

#include "ui/annotation_drags.h"

namespace plumetta {
namespace {

constexpr int kHeight = 30;
constexpr int kWidestFlag = 160;
constexpr int kFlagPadding = 10;  // both sides of the label together
constexpr int kEdgeReach = 6;

}  // namespace

MarkerStrip::MarkerStrip(wxWindow* parent, WaveView& view) : ViewWindow(parent, view) {
  SetMinSize(wxSize(-1, FromDIP(kHeight)));
  Bind(wxEVT_LEFT_DOWN, &MarkerStrip::onLeftDown, this);
  Bind(wxEVT_LEFT_DCLICK, &MarkerStrip::onDoubleClick, this);
  Bind(wxEVT_MOTION, &MarkerStrip::onMove, this);
  Bind(wxEVT_CONTEXT_MENU, &MarkerStrip::onContextMenu, this);
}

// Without a label of its own a marker goes by its number.
wxString MarkerStrip::label(int marker) const {
  const Marker& entry = doc().wave().markers[marker];
  if (entry.label && !entry.label->empty()) return fromUtf8(*entry.label);
  return wxString::Format("%d", marker + 1);
}

double MarkerStrip::flagWidth(double textWidth) const {
  return std::min<double>(std::ceil(textWidth) + FromDIP(kFlagPadding), FromDIP(kWidestFlag));
}

// ---- Drawing --------------------------------------------------------------------------------------------

void MarkerStrip::paint(wxGraphicsContext& gc, const wxRect& area) {
  const int height = GetClientSize().y;
  fillRect(gc, theme().margin, area.x, area.y, area.width, area.height);
  for (int i = doc().wave().loops.count() - 1; i >= 0; --i) paintLoop(gc, i);
  const FrameScale scale = view_.scale();
  for (int i = 0; i < doc().wave().markers.count(); ++i) {
    const double x = scale.x(view_.markerFrame(i));
    if (x <= area.x + area.width + 1 && x >= area.x - FromDIP(kWidestFlag)) paintFlag(gc, i);
  }
  fillRect(gc, theme().cursor, snapped(scale.x(doc().view().cursor)), 0, hairline(), height);
  fillRect(gc, theme().line, area.x, height - hairline(), area.width, hairline());
}

void MarkerStrip::paintFlag(wxGraphicsContext& gc, int marker) {
  const bool chosen = doc().selectedMarker == marker;
  const double x = snapped(view_.scale().x(view_.markerFrame(marker)));
  const double height = loopTop() - FromDIP(3);
  const wxString text = label(marker);
  double textWidth = 0, textHeight = 0;
  gc.SetFont(smallFont(), chosen ? theme().markerText : theme().text);
  gc.GetTextExtent(text, &textWidth, &textHeight);
  const double width = flagWidth(textWidth);
  fillRect(gc, chosen ? theme().marker : withAlpha(theme().marker, 0x40), x, FromDIP(2), width, height);
  fillRect(gc, theme().marker, x, FromDIP(2), hairline(), GetClientSize().y);
  const bool cut = textWidth > width - FromDIP(kFlagPadding);
  if (cut) gc.Clip(x, 0, width - FromDIP(2), loopTop());
  gc.DrawText(text, x + FromDIP(kFlagPadding) / 2.0, FromDIP(2) + (height - textHeight) / 2);
  if (cut) gc.ResetClip();
}

void MarkerStrip::paintLoop(wxGraphicsContext& gc, int loop) {
  const auto [start, end] = view_.loopRange(loop);
  const FrameScale scale = view_.scale();
  const double from = snapped(std::max(scale.x(start), -20.0));
  const double to = snapped(std::min(scale.x(end), GetClientSize().x + 20.0));
  if (to < from) return;
  const double top = loopTop();
  const double height = GetClientSize().y - top - hairline();
  fillRect(gc, withAlpha(theme().loop, loop == 0 ? 0x50 : 0x28), from, top + FromDIP(2), to - from,
           height - FromDIP(3));
  const double bracket = 2 * hairline();
  for (const double x : {from, to - bracket}) fillRect(gc, theme().loop, x, top, bracket, height);
  const double hook = std::min<double>(FromDIP(5), (to - from) / 2);
  for (const double y : {top, top + height - bracket}) {
    fillRect(gc, theme().loop, from, y, hook, bracket);
    fillRect(gc, theme().loop, to - hook, y, hook, bracket);
  }
}

// ---- Mouse ----------------------------------------------------------------------------------------------

// The flag that is seen at a place is the one drawn last.
std::optional<int> MarkerStrip::markerAt(const wxPoint& at) const {
  if (at.y >= loopTop()) return std::nullopt;
  const FrameScale scale = view_.scale();
  wxClientDC dc(const_cast<MarkerStrip*>(this));
  dc.SetFont(smallFont());
  for (int i = doc().wave().markers.count() - 1; i >= 0; --i) {
    const double x = scale.x(doc().wave().markers[i].position);
    if (at.x < x - FromDIP(3) || at.x > x + FromDIP(kWidestFlag)) continue;
    if (at.x <= x + flagWidth(dc.GetTextExtent(label(i)).x)) return i;
  }
  return std::nullopt;
}

std::optional<RangeEdge> MarkerStrip::loopEdgeAt(const wxPoint& at) const {
  const CLoopPoints& loops = doc().wave().loops;
  if (at.y < loopTop() || !loops.hasLoops() || view_.settings.loopsLocked) return std::nullopt;
  return edgeAt(view_.scale(), loops.start(0), loops.end(0), at.x, FromDIP(kEdgeReach));
}

void MarkerStrip::choose(std::optional<int> marker) {
  doc().selectedMarker = marker;
  if (view_.onPreviewChanged) view_.onPreviewChanged();
}

void MarkerStrip::onLeftDown(wxMouseEvent& event) {
  const wxPoint at = event.GetPosition();
  const auto marker = markerAt(at);
  choose(marker);
  if (marker) {
    if (!view_.settings.markersLocked) startDrag(std::make_unique<MarkerDrag>(view_, *marker, at.x));
  } else if (const auto edge = loopEdgeAt(at)) {
    const CLoopPoints& loops = doc().wave().loops;
    const bool lower = *edge == RangeEdge::lower;
    startDrag(std::make_unique<LoopDrag>(view_, lower ? loops.end(0) : loops.start(0),
                                         lower ? loops.start(0) : loops.end(0)));
  }
  event.Skip();
}

void MarkerStrip::onDoubleClick(wxMouseEvent& event) {
  cancelDrag();
  if (const auto marker = markerAt(event.GetPosition())) rename(*marker);
}

void MarkerStrip::rename(int marker) {
  const auto& old = doc().wave().markers[marker].label;
  wxTextEntryDialog dialog(this, "Label", "Rename marker", fromUtf8(old.value_or("")));
  if (dialog.ShowModal() != wxID_OK || marker >= doc().wave().markers.count()) return;
  const std::string label = dialog.GetValue().ToStdString(wxConvUTF8);
  if (label != old.value_or("")) view_.run("marker-label", int64_t{marker}, label);
}

void MarkerStrip::onMove(wxMouseEvent& event) {
  event.Skip();
  if (dragging()) return;
  if (loopEdgeAt(event.GetPosition())) {
    SetCursor(wxCursor(wxCURSOR_SIZEWE));
  } else {
    SetCursor(markerAt(event.GetPosition()) ? wxCursor(wxCURSOR_HAND) : wxNullCursor);
  }
  const auto marker = markerAt(event.GetPosition());
  const wxString tip =
      marker ? label(*marker) + "\n" + fromUtf8(view_.positionText(view_.markerFrame(*marker))) : wxString();
  if (GetToolTipText() != tip) SetToolTip(tip);
}

void MarkerStrip::onContextMenu(wxContextMenuEvent& event) {
  cancelDrag();
  if (doc().wave().frames() == 0) return;
  const wxPoint at = ScreenToClient(event.GetPosition());
  const auto marker = markerAt(at);
  choose(marker);
  wxMenu menu;
  const auto add = [&](const char* text, auto action) {
    menu.Bind(
        wxEVT_MENU, [action](wxCommandEvent&) { action(); }, menu.Append(wxID_ANY, text)->GetId());
  };
  if (marker) {
    add("&Rename marker...", [this, i = *marker] { rename(i); });
    add("&Delete marker", [this, i = *marker] { view_.run("marker-delete", int64_t{i}); });
  } else {
    const double frame = doc().clampFrame(view_.scale().nearestFrame(at.x));
    add("Add &marker here", [this, frame] { view_.run("marker", FrameOrTime{frame}); });
    if (doc().view().hasSelection()) add("&Loop from selection", [this] { view_.run("loop-selection"); });
    if (doc().wave().loops.hasLoops()) add("Re&move loop", [this] { view_.run("loop-clear"); });
  }
  PopupMenu(&menu, at);
}

}  // namespace plumetta
