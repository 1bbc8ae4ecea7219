// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "audio/sound_tap.h"
#include "ui/live_view.h"
#include "ui/window_profile.h"

namespace plumetta {

// An oscilloscope: two channels over a short time, begun where the first one rises through zero. The wheel
// changes the time, which is remembered.
class ScopeView : public LiveView {
 public:
  // `trail` must outlive this.
  ScopeView(wxWindow* parent, const StereoTrail& trail, WindowProfile& profile);

  // The trail has changed; its rate in Hz.
  void follow(int sampleRate);

 private:
  void paint(wxGraphicsContext& gc, const wxSize& size) override;
  void paintGrid(wxGraphicsContext& gc, const wxSize& size) const;
  void paintChannel(wxGraphicsContext& gc, const wxSize& size, std::span<const float> samples,
                    const wxColour& colour) const;
  void onWheel(wxMouseEvent& event);

  const StereoTrail& trail_;
  WindowProfile& profile_;
  size_t time_;  // which of those there are
  int sampleRate_ = 44100;
};

}  // namespace plumetta
