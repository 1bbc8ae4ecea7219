// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/sound_tap.h"
#include "ui/live_view.h"

namespace plumetta {

// Both channels against each other, turned so that what they share stands upright, and how alike they are as
// a figure from -1 to 1.
class GoniometerView : public LiveView {
 public:
  // `trail` must outlive this.
  GoniometerView(wxWindow* parent, const StereoTrail& trail)
      : LiveView(parent, "Goniometer"), trail_(trail) {}

  // The trail has changed.
  void follow() { redraw(); }

 private:
  void paint(wxGraphicsContext& gc, const wxSize& size) override;
  void paintAxes(wxGraphicsContext& gc, double x, double y, double radius) const;
  void paintFrames(wxGraphicsContext& gc, double x, double y, double radius) const;
  void paintCorrelation(wxGraphicsContext& gc, const wxSize& size, double top) const;

  const StereoTrail& trail_;
};

}  // namespace plumetta
