// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/meter_view.h"

#include <algorithm>
#include <cmath>

#include "ui/lane_header.h"
#include "ui/text.h"
#include "ui/view_window.h"

namespace plumetta {
namespace {

constexpr double kBottomDb = -60.0;
// Where a level begins to be high, and to be near its end.
constexpr double kHighDb = -12.0;
constexpr double kHighestDb = -3.0;
constexpr int kEdge = 6;
constexpr int kLight = 8;     // length of the clip light
constexpr int kLightGap = 2;  // and its distance from the bar
constexpr int kGroupGap = 6;
constexpr int kThickest = 18;

double fractionOf(double db) { return std::clamp(1.0 - db / kBottomDb, 0.0, 1.0); }

wxString barName(size_t channel, size_t channels, bool input) {
  const wxString name = channelName(static_cast<int>(channel), static_cast<int>(channels));
  return input ? "In " + name : name;
}

}  // namespace

MeterView::MeterView(wxWindow* parent) : LiveView(parent, "Level meters") {
  setChannels(2, 0);
  Bind(wxEVT_LEFT_DOWN, [this](wxMouseEvent&) {
    for (Bar& bar : bars_) bar.meter.clearClip();
    redraw();
  });
  SetToolTip("Peak levels in dB; a click puts the clip lights out");
}

void MeterView::setChannels(size_t outputs, size_t inputs) {
  if (bars_.size() == outputs + inputs && inputs_ == inputs) return;
  bars_.clear();
  for (size_t c = 0; c < outputs; ++c) bars_.push_back({{}, barName(c, outputs, false), false});
  for (size_t c = 0; c < inputs; ++c) bars_.push_back({{}, barName(c, inputs, true), true});
  inputs_ = inputs;
}

void MeterView::advance(std::span<const float> outputs, std::span<const float> inputs, double seconds) {
  setChannels(outputs.size(), inputs.size());
  for (size_t i = 0; i < bars_.size(); ++i) {
    const float peak = i < outputs.size() ? outputs[i] : inputs[i - outputs.size()];
    bars_[i].meter.advance(peak, seconds);
  }
  redraw();
}

bool MeterView::falling() const {
  return std::any_of(bars_.begin(), bars_.end(), [](const Bar& bar) { return bar.meter.falling(); });
}

// ---- Places ---------------------------------------------------------------------------------------------

MeterView::Layout MeterView::layoutIn(const wxGraphicsContext& gc, const wxSize& size) const {
  double nameWidth = 0, nameHeight = 0, scaleWidth = 0;
  for (const Bar& bar : bars_) {
    double width = 0;
    gc.GetTextExtent(bar.name, &width, &nameHeight);
    nameWidth = std::max(nameWidth, width);
  }
  double ignored = 0;
  gc.GetTextExtent("-60", &scaleWidth, &ignored);
  const double edge = FromDIP(kEdge), light = FromDIP(kLight + kLightGap);
  Layout layout{};
  layout.upright = size.y > size.x;
  layout.groupGap = inputs_ > 0 ? FromDIP(kGroupGap) : 0;
  double room = 0;
  if (layout.upright) {
    layout.start = size.y - edge - nameHeight;
    layout.length = layout.start - edge - light;
    layout.first = edge + scaleWidth + edge;
    room = size.x - layout.first - edge;
  } else {
    layout.start = edge + nameWidth + edge;
    layout.length = size.x - layout.start - edge - light;
    layout.first = edge;
    room = size.y - edge - nameHeight - edge / 2;
  }
  layout.length = std::max(layout.length, 1.0);
  const double most = layout.upright ? 2.0 * FromDIP(kThickest) : FromDIP(kThickest);
  layout.pitch = std::clamp((room - layout.groupGap) / static_cast<double>(bars_.size()), 1.0, most);
  layout.thickness = layout.pitch > FromDIP(4) ? layout.pitch - FromDIP(2) : layout.pitch * 0.75;
  // What the bars leave free stays free on both sides alike.
  const double used = layout.pitch * static_cast<double>(bars_.size()) + layout.groupGap;
  layout.first += std::max(room - used, 0.0) / 2;
  return layout;
}

double MeterView::acrossOf(const Layout& layout, size_t bar) const {
  return layout.first + static_cast<double>(bar) * layout.pitch + (bars_[bar].input ? layout.groupGap : 0);
}

void MeterView::fillPart(wxGraphicsContext& gc, const Layout& layout, size_t bar, const wxColour& colour,
                         double from, double to) const {
  const double across = snapped(acrossOf(layout, bar));
  const double thickness = std::max(snapped(layout.thickness), hairline());
  const double sign = layout.upright ? -1 : 1;
  const double a = snapped(layout.start + sign * from * layout.length);
  const double b = snapped(layout.start + sign * to * layout.length);
  const double low = std::min(a, b), extent = std::abs(b - a);
  if (layout.upright) {
    fillRect(gc, colour, across, low, thickness, extent);
  } else {
    fillRect(gc, colour, low, across, extent, thickness);
  }
}

// ---- Painting -------------------------------------------------------------------------------------------

void MeterView::paint(wxGraphicsContext& gc, const wxSize& size) {
  gc.SetFont(smallFont(), theme().textQuiet);
  const Layout layout = layoutIn(gc, size);
  for (size_t i = 0; i < bars_.size(); ++i) {
    paintBar(gc, layout, i);
    paintName(gc, layout, i);
  }
  paintScale(gc, layout);
}

void MeterView::paintBar(wxGraphicsContext& gc, const Layout& layout, size_t bar) const {
  const LevelMeter& meter = bars_[bar].meter;
  const struct {
    double fromDb, toDb;
    wxColour colour;
  } zones[] = {{kBottomDb, kHighDb, theme().loop},
               {kHighDb, kHighestDb, theme().marker},
               {kHighestDb, 0.0, theme().clip}};
  fillPart(gc, layout, bar, theme().lane, 0, 1);
  const double level = fractionOf(meter.levelDb());
  for (const auto& zone : zones) {
    const double from = fractionOf(zone.fromDb), to = std::min(fractionOf(zone.toDb), level);
    if (to > from) fillPart(gc, layout, bar, zone.colour, from, to);
  }
  const double held = fractionOf(meter.heldDb());
  const double mark = FromDIP(2) / layout.length;
  if (held > mark) fillPart(gc, layout, bar, theme().text, held - mark, held);
  const double light = 1 + FromDIP(kLightGap) / layout.length;
  fillPart(gc, layout, bar, meter.clipped() ? theme().clip : theme().line, light,
           light + FromDIP(kLight) / layout.length);
}

void MeterView::paintScale(wxGraphicsContext& gc, const Layout& layout) const {
  const double apart = FromDIP(layout.upright ? 22 : 44) / layout.length * -kBottomDb;
  double step = 60;
  for (const double each : {1.0, 2.0, 3.0, 6.0, 12.0, 20.0, 30.0}) {
    if (each < apart) continue;
    step = each;
    break;
  }
  const double end = acrossOf(layout, bars_.size() - 1) + layout.thickness;
  for (double db = 0; db >= kBottomDb; db -= step) {
    const double at = layout.start + (layout.upright ? -1 : 1) * fractionOf(db) * layout.length;
    const wxString label = db < 0 ? toWx("\u2212") + wxString::Format("%g", -db) : wxString("0");
    double width = 0, height = 0;
    gc.GetTextExtent(label, &width, &height);
    const double line = snapped(at), extent = end - layout.first;
    if (layout.upright) {
      fillRect(gc, theme().zero, layout.first, line, extent, hairline());
      gc.DrawText(label, layout.first - FromDIP(kEdge) - width, at - height / 2);
    } else {
      fillRect(gc, theme().zero, line, layout.first, hairline(), extent);
      gc.DrawText(label, at - width / 2, end + FromDIP(1));
    }
  }
}

// Where bars are too thin for names there are none.
void MeterView::paintName(wxGraphicsContext& gc, const Layout& layout, size_t bar) const {
  double width = 0, height = 0;
  const wxString& name = bars_[bar].name;
  gc.GetTextExtent(name, &width, &height);
  const double middle = acrossOf(layout, bar) + layout.thickness / 2;
  if (layout.upright) {
    if (width <= layout.pitch) gc.DrawText(name, middle - width / 2, layout.start + FromDIP(2));
  } else if (height <= layout.pitch + FromDIP(4)) {
    gc.DrawText(name, layout.start - FromDIP(kEdge) - width, middle - height / 2);
  }
}

}  // namespace plumetta
