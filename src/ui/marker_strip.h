// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/menu.h>

#include "ui/view_window.h"

namespace plumetta {

// Between ruler and lanes: a flag for each marker, and below them a bar for each loop. Flags and the first
// loop's ends are dragged; what a drag changes is recorded when it ends.
class MarkerStrip : public ViewWindow {
 public:
  MarkerStrip(wxWindow* parent, WaveView& view);
  bool AcceptsFocus() const override { return false; }
  void followAnnotations() { Refresh(false); }

 protected:
  void paint(wxGraphicsContext& gc, const wxRect& area) override;

 private:
  int loopTop() const { return GetClientSize().y - FromDIP(10); }
  wxString label(int marker) const;
  double flagWidth(double textWidth) const;
  std::optional<int> markerAt(const wxPoint& at) const;
  std::optional<RangeEdge> loopEdgeAt(const wxPoint& at) const;
  void paintFlag(wxGraphicsContext& gc, int marker);
  void paintLoop(wxGraphicsContext& gc, int loop);
  void choose(std::optional<int> marker);
  void rename(int marker);

  void onLeftDown(wxMouseEvent& event);
  void onDoubleClick(wxMouseEvent& event);
  void onMove(wxMouseEvent& event);
  void onContextMenu(wxContextMenuEvent& event);
};

}  // namespace plumetta
