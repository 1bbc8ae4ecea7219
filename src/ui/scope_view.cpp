// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/scope_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "audio/stereo_figures.h"
#include "ui/view_window.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Oscilloscope";
constexpr const char* kTimeKey = "Milliseconds";
constexpr std::array kTimes{1, 2, 5, 10, 20, 50, 100};  // milliseconds
constexpr int kDefaultTime = 20;
constexpr int kParts = 10;  // the grid's, along time

size_t indexOfTime(int milliseconds) {
  const auto* const found = std::find(kTimes.begin(), kTimes.end(), milliseconds);
  const auto* const time =
      found != kTimes.end() ? found : std::find(kTimes.begin(), kTimes.end(), kDefaultTime);
  return static_cast<size_t>(std::distance(kTimes.begin(), time));
}

}  // namespace

ScopeView::ScopeView(wxWindow* parent, const StereoTrail& trail, WindowProfile& profile)
    : LiveView(parent, "Oscilloscope"),
      trail_(trail),
      profile_(profile),
      time_(indexOfTime(profile.integer(kSection, kTimeKey, kDefaultTime))) {
  Bind(wxEVT_MOUSEWHEEL, &ScopeView::onWheel, this);
  SetToolTip("The wheel changes the time that is shown");
}

void ScopeView::follow(int sampleRate) {
  sampleRate_ = sampleRate;
  redraw();
}

void ScopeView::onWheel(wxMouseEvent& event) {
  const bool shorter = event.GetWheelRotation() > 0;
  if (shorter ? time_ == 0 : time_ + 1 == kTimes.size()) return;
  time_ = shorter ? time_ - 1 : time_ + 1;
  profile_.setInteger(kSection, kTimeKey, kTimes[time_]);
  redraw();
}

// ---- Painting -------------------------------------------------------------------------------------------

void ScopeView::paint(wxGraphicsContext& gc, const wxSize& size) {
  paintGrid(gc, size);
  // The other half of the trail is for finding where to begin.
  const double wanted = sampleRate_ * 0.001 * kTimes[time_];
  const size_t frames = std::clamp<size_t>(static_cast<size_t>(wanted), 2, trail_.frames() / 2);
  const size_t first = triggerFrame(trail_.left(), frames);
  paintChannel(gc, size, trail_.right().subspan(first, frames), theme().curves[1]);
  paintChannel(gc, size, trail_.left().subspan(first, frames), theme().curves[0]);
  gc.SetFont(smallFont(), theme().textQuiet);
  const wxString text = wxString::Format("%d ms", kTimes[time_]);
  double width = 0, height = 0;
  gc.GetTextExtent(text, &width, &height);
  gc.DrawText(text, size.x - width - FromDIP(6), size.y - height - FromDIP(3));
}

void ScopeView::paintGrid(wxGraphicsContext& gc, const wxSize& size) const {
  fillRect(gc, theme().lane, 0, 0, size.x, size.y);
  for (int part = 1; part < kParts; ++part) {
    fillRect(gc, theme().grid, snapped(size.x * part / double{kParts}), 0, hairline(), size.y);
  }
  for (const double level : {-0.5, 0.0, 0.5}) {
    fillRect(gc, level == 0 ? theme().zero : theme().grid, 0, snapped(size.y * (1 - level) / 2), size.x,
             hairline());
  }
}

// Of the frames that share a column, lowest and highest.
void ScopeView::paintChannel(wxGraphicsContext& gc, const wxSize& size, std::span<const float> samples,
                             const wxColour& colour) const {
  const size_t columns = std::clamp<size_t>(static_cast<size_t>(std::max(size.x, 2)), 2, samples.size());
  const double middle = size.y / 2.0, reach = middle - FromDIP(3);
  const double width = static_cast<double>(size.x) / static_cast<double>(columns - 1);
  wxGraphicsPath path = gc.CreatePath();
  for (size_t i = 0; i < columns; ++i) {
    const size_t from = i * samples.size() / columns, to = (i + 1) * samples.size() / columns;
    const auto part = samples.subspan(from, to - from);
    const auto [low, high] = std::minmax_element(part.begin(), part.end());
    const double x = static_cast<double>(i) * width;
    // In the order in which they come, so that the line does not run back.
    const float first = low < high ? *low : *high, second = low < high ? *high : *low;
    const double y = middle - static_cast<double>(first) * reach;
    i == 0 ? path.MoveToPoint(x, y) : path.AddLineToPoint(x, y);
    if (first != second) path.AddLineToPoint(x, middle - static_cast<double>(second) * reach);
  }
  gc.SetPen(wxPen(colour, std::max(FromDIP(1), 1)));
  gc.StrokePath(path);
}

}  // namespace plumetta
