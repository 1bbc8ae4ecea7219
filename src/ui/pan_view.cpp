// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pan_view.h"

#include <algorithm>
#include <cmath>

#include "ui/view_window.h"

namespace plumetta {
namespace {

constexpr int kSide = 14;  // free on either side of the track
constexpr int kKnob = 6;   // half its width
constexpr int kTrack = 4;

wxString balanceText(float balance) {
  const int percent = static_cast<int>(std::lround(std::fabs(balance) * 100));
  return percent == 0 ? wxString("Centre") : wxString::Format(balance < 0 ? "L %d %%" : "R %d %%", percent);
}

}  // namespace

void PanView::show(float firstGain, float secondGain) {
  const float balance = secondGain - firstGain;
  if (balance == balance_) return;
  balance_ = balance;
  redraw();
}

void PanView::paint(wxGraphicsContext& gc, const wxSize& size) {
  gc.SetFont(smallFont(), theme().text);
  const wxString text = balanceText(balance_);
  double width = 0, height = 0;
  gc.GetTextExtent(text, &width, &height);
  const double side = FromDIP(kSide), length = std::max(size.x - 2 * side, 1.0);
  const double knob = FromDIP(kKnob), gap = FromDIP(4);
  const double top = std::max((size.y - height - gap - 2 * knob) / 2, 0.0);
  const double middle = side + length / 2, at = middle + static_cast<double>(balance_) * length / 2;
  const double line = top + knob - FromDIP(kTrack) / 2.0;
  fillRect(gc, theme().line, side, line, length, FromDIP(kTrack));
  fillRect(gc, theme().accent, std::min(middle, at), line, std::abs(at - middle), FromDIP(kTrack));
  fillRect(gc, theme().textQuiet, snapped(middle), top, hairline(), 2 * knob);
  gc.SetBrush(wxBrush(theme().accent));
  gc.DrawEllipse(at - knob, top, 2 * knob, 2 * knob);
  gc.DrawText(text, (size.x - width) / 2, top + 2 * knob + gap);
}

}  // namespace plumetta
