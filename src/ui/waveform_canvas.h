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
  void paintSelectionGrid(wxGraphicsContext& gc, const wxRect& area);
  void paintDraggedSample(wxGraphicsContext& gc);
  void paintFocus(wxGraphicsContext& gc);

  void onLeftDown(wxMouseEvent& event);
  // Takes hold of a volume point or a sample there. True when there was something.
  bool grabAt(const wxPoint& at);
  // The end of the selection that is nearer to a frame goes there; without one it reaches from the cursor.
  // Returns the end that stays.
  int32_t extendSelectionTo(int32_t frame);
  // What the volume envelope has under the pointer, as long as its points may be moved.
  std::optional<EnvelopeLayer::Hit> envelopeAt(const wxPoint& at) const;
  struct SampleHit {
    int32_t frame;
    int channel;
  };
  std::optional<SampleHit> sampleAt(const wxPoint& at) const;
  void onDoubleClick(wxMouseEvent& event);
  void onMove(wxMouseEvent& event);
  void onKey(wxKeyEvent& event);
  void onContextMenu(wxContextMenuEvent& event);
  bool moveByKey(const wxKeyEvent& event);
  void moveCursor(int64_t frame, bool extend);
  void selectRegionAt(int64_t frame);
  void addEditItems(wxMenu& menu);
  void addMarkerItems(wxMenu& menu, int32_t frame);
  std::optional<RangeEdge> selectionEdgeAt(int x) const;

  EnvelopeLayer envelope_;
};

}  // namespace plumetta
