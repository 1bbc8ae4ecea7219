// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/waveform_canvas.h"

namespace plumetta {

// A stereo pair goes by its sides, everything else by numbers.
wxString channelName(int channel, int channels);

// Left of each lane: the channel's switch and the amplitude ruler. A click on a switch turns the channel on
// or off for editing; a double click, or one with Alt or Ctrl, leaves it on alone.
class LaneHeader : public ViewWindow {
 public:
  LaneHeader(wxWindow* parent, WaveView& view, const WaveformCanvas& canvas);
  bool AcceptsFocus() const override { return false; }
  void follow() override {}

 protected:
  void paint(wxGraphicsContext& gc, const wxRect& area) override;
  void onWheel(wxMouseEvent& event) override;
  std::optional<FrameScale> ownScale() const override { return std::nullopt; }

 private:
  wxRect switchRect(int lane) const;
  void paintSwitch(wxGraphicsContext& gc, int lane);
  void paintAmplitudes(wxGraphicsContext& gc, int lane);
  void onLeftDown(wxMouseEvent& event);
  void solo(int channel, bool wasAlone);
  void onMove(wxMouseEvent& event);
  void onContextMenu(wxContextMenuEvent& event);
  std::optional<int> switchAt(const wxPoint& at) const;

  const WaveformCanvas& canvas_;
  bool wasAlone_ = false;  // before the first of two clicks
};

}  // namespace plumetta
