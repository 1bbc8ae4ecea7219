// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/clock_view.h"

#include <algorithm>

#include "ui/text.h"

namespace plumetta {
namespace {

constexpr double kFilled = 0.8;  // of the window, by the figures
constexpr int kTallest = 64;     // beyond that, figures only take room

}  // namespace

void ClockView::show(const PlayTime& time, TimeFormat format) {
  const wxString unit = format == kTimeSeconds ? " s" : format == kTimeMilliseconds ? " ms" : "";
  setText(toWx(positionIn(format, time.frame, time.sampleRate)) + unit);
}

void ClockView::showNothing() { setText({}); }

void ClockView::setText(const wxString& text) {
  if (text == text_) return;
  text_ = text;
  redraw();
}

void ClockView::paint(wxGraphicsContext& gc, const wxSize& size) {
  if (text_.empty()) return;
  wxFont font = GetFont();
  gc.SetFont(font, theme().text);
  double width = 0, height = 0;
  // Figures are equally wide, so that the text does not tremble while it runs.
  wxString widest = text_;
  for (char figure = '1'; figure <= '9'; ++figure) widest.Replace(wxString(figure), "0");
  gc.GetTextExtent(widest, &width, &height);
  const double factor =
      std::min({kFilled * size.x / width, kFilled * size.y / height, FromDIP(kTallest) / height});
  font.SetFractionalPointSize(std::max(font.GetFractionalPointSize() * factor, 1.0));
  gc.SetFont(font, theme().text);
  gc.GetTextExtent(widest, &width, &height);
  gc.DrawText(text_, (size.x - width) / 2, (size.y - height) / 2);
}

}  // namespace plumetta
