// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/live_spectrum.h"
#include "audio/sound_tap.h"
#include "ui/curve_plot.h"

namespace plumetta {

// The spectrum of what is played at this moment.
class LiveSpectrumView : public CurvePlot {
 public:
  explicit LiveSpectrumView(wxWindow* parent);

  bool AcceptsFocus() const override { return false; }

  // The trail, of at least LiveSpectrum::kFrames, has changed in the `seconds` since the last call.
  void advance(const StereoTrail& trail, int sampleRate, double seconds);
  bool falling() const { return spectrum_.falling(); }

 private:
  PlotCurve curveOf(int channel) const;
  void showCurves();

  LiveSpectrum spectrum_;
  int sampleRate_ = 44100;
};

}  // namespace plumetta
