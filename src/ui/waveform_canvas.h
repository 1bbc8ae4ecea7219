// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/envelope_layer.h"
#include "ui/view_window.h"

namespace plumetta {

// The lanes: waveform, grid, selection, cursor, marker and loop lines and the volume envelope, and everything
// that mouse and keyboard do there.
class WaveformCanvas : public ViewWindow {
 public:
  WaveformCanvas(wxWindow* parent, WaveView& view);

  LaneLayout lanes() const;
  AmplitudeScale amplitudeScale(int lane) const;
  // Markers, loops, envelope or a drag of one of them have changed.
  void followAnnotations() { Refresh(false); }

  bool AcceptsFocus() const override { return true; }

 protected:
  void paint(wxGraphicsContext& gc, const wxRect& area) override;

 private:
  void paintGrid(wxGraphicsContext& gc, const AmplitudeScale& lane, const wxRect& area);
  void paintAnnotations(wxGraphicsContext& gc, const wxRect& area);
  void paintFocus(wxGraphicsContext& gc);

  void onLeftDown(wxMouseEvent& event);
  void onDoubleClick(wxMouseEvent& event);
  void onMove(wxMouseEvent& event);
  void onKey(wxKeyEvent& event);
  void onContextMenu(wxContextMenuEvent& event);
  bool moveByKey(const wxKeyEvent& event);
  void moveCursor(int64_t frame, bool extend);
  void selectRegionAt(int64_t frame);
  void addMarkerItems(wxMenu& menu, int32_t frame);
  std::optional<RangeEdge> selectionEdgeAt(int x) const;

  EnvelopeLayer envelope_;
};

}  // namespace plumetta
