// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "doc/ruler_ticks.h"
#include "ui/view_window.h"

namespace plumetta {

// The time scale over the lanes: in the unit that the settings choose. A press moves the cursor.
class TimeRuler : public ViewWindow {
 public:
  TimeRuler(wxWindow* parent, WaveView& view);
  bool AcceptsFocus() const override { return false; }

 protected:
  void paint(wxGraphicsContext& gc, const wxRect& area) override;

 private:
  wxString label(double frame, const TickSpacing& ticks) const;
  TickSpacing spacing(wxGraphicsContext& gc) const;
  void onLeftDown(wxMouseEvent& event);
  void onContextMenu(wxContextMenuEvent& event);
};

}  // namespace plumetta
