// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/play_clock.h"
#include "doc/ruler_ticks.h"
#include "ui/live_view.h"

namespace plumetta {

// A position in large figures.
class ClockView : public LiveView {
 public:
  explicit ClockView(wxWindow* parent) : LiveView(parent, "Time") {}

  // Drawn again only when that changes what is to be read.
  void show(const PlayTime& time, TimeFormat format);
  // There is no position.
  void showNothing();

 private:
  void paint(wxGraphicsContext& gc, const wxSize& size) override;
  void setText(const wxString& text);

  wxString text_;
};

}  // namespace plumetta
