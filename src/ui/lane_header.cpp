// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/lane_header.h"

#include <wx/menu.h>

#include <algorithm>
#include <cmath>

#include "doc/ruler_ticks.h"

namespace plumetta {
namespace {

constexpr int kWidth = 72;
constexpr int kSwitchSize = 24;
constexpr int kLabelDistance = 24;

}  // namespace

wxString channelName(int channel, int channels) {
  if (channels == 2) return channel == 0 ? "L" : "R";
  return wxString::Format("%d", channel + 1);
}

LaneHeader::LaneHeader(wxWindow* parent, WaveView& view, const WaveformCanvas& canvas)
    : ViewWindow(parent, view), canvas_(canvas) {
  SetMinSize(wxSize(FromDIP(kWidth), -1));
  Bind(wxEVT_LEFT_DOWN, &LaneHeader::onLeftDown, this);
  Bind(wxEVT_LEFT_DCLICK, [this](wxMouseEvent& event) {
    if (const auto channel = switchAt(event.GetPosition())) solo(*channel, wasAlone_);
  });
  Bind(wxEVT_MOTION, &LaneHeader::onMove, this);
  Bind(wxEVT_CONTEXT_MENU, &LaneHeader::onContextMenu, this);
}

wxRect LaneHeader::switchRect(int lane) const {
  const LaneLayout layout = canvas_.lanes();
  const int size = std::min(FromDIP(kSwitchSize), layout.laneHeight(lane) - FromDIP(2));
  return {FromDIP(8), layout.top(lane) + (layout.laneHeight(lane) - size) / 2, FromDIP(kSwitchSize), size};
}

void LaneHeader::paint(wxGraphicsContext& gc, const wxRect& area) {
  const wxSize size = GetClientSize();
  const LaneLayout layout = canvas_.lanes();
  fillRect(gc, theme().margin, area.x, area.y, area.width, area.height);
  for (int lane = 0; lane < layout.lanes; ++lane) {
    if (lane > 0) fillRect(gc, theme().line, 0, layout.top(lane) - layout.gap, size.x, layout.gap);
    paintAmplitudes(gc, lane);
    paintSwitch(gc, lane);
  }
  fillRect(gc, theme().line, size.x - hairline(), area.y, hairline(), area.height);
}

void LaneHeader::paintSwitch(wxGraphicsContext& gc, int lane) {
  const wxRect box = switchRect(lane);
  if (box.height < FromDIP(6)) return;
  const bool active = doc().wave().isActive(lane);
  const double inset = hairline() / 2;
  gc.SetPen(gc.CreatePen(wxGraphicsPenInfo(active ? theme().accent : theme().textQuiet).Width(hairline())));
  gc.SetBrush(active ? wxBrush(theme().accent) : wxNullBrush);
  gc.DrawRoundedRectangle(box.x + inset, box.y + inset, box.width - 2 * inset, box.height - 2 * inset,
                          FromDIP(4));
  gc.SetFont(smallFont().Bold(), active ? theme().lane : theme().textQuiet);
  const wxString name = channelName(lane, doc().wave().channels());
  double width = 0, height = 0;
  gc.GetTextExtent(name, &width, &height);
  if (height > box.height + FromDIP(4)) return;
  gc.DrawText(name, box.x + (box.width - width) / 2, box.y + (box.height - height) / 2);
}

void LaneHeader::paintAmplitudes(wxGraphicsContext& gc, int lane) {
  const AmplitudeScale scale = canvas_.amplitudeScale(lane);
  const double right = GetClientSize().x - hairline();
  gc.SetFont(smallFont(), theme().textQuiet);
  for (const AmplitudeTick& tick :
       amplitudeTicks(scale.height, view_.amplitudeZoom(), view_.decibels(), FromDIP(kLabelDistance))) {
    const double y = std::min(snapped(scale.y(tick.value)), scale.top + scale.height - hairline());
    fillRect(gc, theme().line, right - FromDIP(4), y, FromDIP(4), hairline());
    const wxString label = fromUtf8(tick.label);
    double width = 0, height = 0;
    gc.GetTextExtent(label, &width, &height);
    // Labels of the ends stay inside the lane.
    if (height > scale.height) continue;
    const double top = std::clamp(y - height / 2, scale.top, scale.top + scale.height - height);
    gc.DrawText(label, right - FromDIP(6) - width, top);
  }
}

std::optional<int> LaneHeader::switchAt(const wxPoint& at) const {
  const auto lane = canvas_.lanes().laneAt(at.y);
  if (lane && switchRect(*lane).Inflate(FromDIP(4)).Contains(at)) return lane;
  return std::nullopt;
}

void LaneHeader::onLeftDown(wxMouseEvent& event) {
  const auto channel = switchAt(event.GetPosition());
  if (!channel) return;
  wasAlone_ = doc().wave().isActive(*channel) && doc().wave().activeCount() == 1;
  if (event.AltDown() || event.ControlDown()) {
    solo(*channel, wasAlone_);
    return;
  }
  doc().setActive(ActiveOperation::toggle, *channel);
}

// Once more on the one channel that is on brings all of them back.
void LaneHeader::solo(int channel, bool wasAlone) {
  doc().setActive(wasAlone ? ActiveOperation::all : ActiveOperation::solo, channel);
}

void LaneHeader::onMove(wxMouseEvent& event) {
  const auto channel = switchAt(event.GetPosition());
  SetCursor(channel ? wxCursor(wxCURSOR_HAND) : wxNullCursor);
  const wxString tip = !channel ? wxString()
                                : wxString::Format(
                                      "Channel %d %s. Click: on or off for editing. "
                                      "Double click: this channel alone.",
                                      *channel + 1, doc().wave().isActive(*channel) ? "on" : "off");
  if (GetToolTipText() != tip) SetToolTip(tip);
  event.Skip();
}

void LaneHeader::onWheel(wxMouseEvent& event) {
  const double notches = static_cast<double>(event.GetWheelRotation()) / std::max(event.GetWheelDelta(), 1);
  view_.setAmplitudeZoom(view_.amplitudeZoom() * std::exp2(notches / 2));
}

void LaneHeader::onContextMenu(wxContextMenuEvent&) {
  wxMenu menu;
  wxMenuItem* linear = menu.AppendRadioItem(wxID_ANY, "&Linear scale");
  wxMenuItem* decibels = menu.AppendRadioItem(wxID_ANY, "&Decibel scale");
  (view_.decibels() ? decibels : linear)->Check();
  menu.Bind(
      wxEVT_MENU, [this](wxCommandEvent&) { view_.setDecibels(false); }, linear->GetId());
  menu.Bind(
      wxEVT_MENU, [this](wxCommandEvent&) { view_.setDecibels(true); }, decibels->GetId());
  menu.AppendSeparator();
  wxMenuItem* whole = menu.Append(wxID_ANY, "Reset &vertical zoom");
  whole->Enable(view_.amplitudeZoom() != 1);
  menu.Bind(
      wxEVT_MENU, [this](wxCommandEvent&) { view_.setAmplitudeZoom(1); }, whole->GetId());
  PopupMenu(&menu);
}

}  // namespace plumetta
