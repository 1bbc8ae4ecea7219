// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "doc/peak_pyramid.h"
#include "ui/view_window.h"

namespace plumetta {

// The whole file, all channels in one, with a frame around what the lanes show. The frame is dragged; a click
// beside it brings it there.
class OverviewStrip : public ViewWindow {
 public:
  OverviewStrip(wxWindow* parent, WaveView& view);
  bool AcceptsFocus() const override { return false; }
  void follow() override;

 protected:
  void paint(wxGraphicsContext& gc, const wxRect& area) override;
  std::optional<FrameScale> ownScale() const override;

 private:
  void onLeftDown(wxMouseEvent& event);
  void paintPeaks(wxGraphicsContext& gc, const wxRect& area, const FrameScale& scale);
  void paintWindow(wxGraphicsContext& gc, const FrameScale& scale);

  FrameScale shownWindow_{-1, 1};
  std::vector<PeakColumn> columns_, all_;
};

}  // namespace plumetta
