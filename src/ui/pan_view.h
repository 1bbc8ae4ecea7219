// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/live_view.h"

namespace plumetta {

// Where a MIDI controller has put the sound between both sides.
class PanView : public LiveView {
 public:
  explicit PanView(wxWindow* parent) : LiveView(parent, "MIDI pan") {}

  // The factors of the first and the second channel, 0 to 1. Drawn again only when they have changed.
  void show(float firstGain, float secondGain);

 private:
  void paint(wxGraphicsContext& gc, const wxSize& size) override;

  float balance_ = 0;  // -1: only the first channel, 1: only the second
};

}  // namespace plumetta
