// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/view_window.h"

namespace plumetta {

// Draws a selection out from a fixed end; also moves one edge of a selection that is there, the other end
// being the fixed one. Letting go at once leaves no selection, and the cursor there.
class SelectionDrag : public Drag {
 public:
  // `before`: what a cancelled drag goes back to.
  SelectionDrag(WaveView& view, const ViewState& before, int32_t fixedEnd, int startX, int slack)
      : view_(view), before_(before), fixed_(fixedEnd), startX_(startX), slack_(slack) {}

  void move(const wxPoint& at, bool) override {
    // A hand that trembles while it clicks selects nothing.
    if (!moved_ && std::abs(at.x - startX_) < slack_) return;
    moved_ = true;
    const double x = std::clamp<double>(at.x, 0, view_.width() - 1);
    const int32_t frame = view_.selectionEnd(view_.doc.clampFrame(view_.scale().nearestFrame(x)));
    view_.doc.select(fixed_, frame);
    view_.doc.setCursor(frame);
  }
  void drop() override {}
  void cancel() override {
    view_.doc.setSelectionExactly(before_.selectionStart, before_.selectionEnd);
    view_.doc.setCursor(before_.cursor);
  }

 private:
  WaveView& view_;
  ViewState before_;
  int32_t fixed_;
  int startX_;
  int slack_;
  bool moved_ = false;
};

}  // namespace plumetta
