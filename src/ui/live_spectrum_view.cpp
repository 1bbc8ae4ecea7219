// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/live_spectrum_view.h"

#include "ui/lane_header.h"

namespace plumetta {
namespace {

constexpr double kLowestHz = 20.0;
constexpr double kBottomDb = -96.0;

}  // namespace

LiveSpectrumView::LiveSpectrumView(wxWindow* parent) : CurvePlot(parent) {
  SetName("Live spectrum");
  SetMinSize(wxDefaultSize);
  setDecibels(kBottomDb, 0.0);
  setFrequencies({kLowestHz, sampleRate_ / 2.0, true});
  onThemeChanged = [this] { showCurves(); };
  showCurves();
}

void LiveSpectrumView::advance(const StereoTrail& trail, int sampleRate, double seconds) {
  sampleRate_ = sampleRate;
  setFrequencies({kLowestHz, sampleRate_ / 2.0, true});
  spectrum_.advance(trail.left().last(LiveSpectrum::kFrames), trail.right().last(LiveSpectrum::kFrames),
                    seconds);
  showCurves();
}

PlotCurve LiveSpectrumView::curveOf(int channel) const {
  PlotCurve curve;
  curve.name = channelName(channel, 2);
  curve.colour = theme().curves[static_cast<size_t>(channel)];
  const double hzPerLine = static_cast<double>(sampleRate_) / LiveSpectrum::kFrames;
  const auto levels = spectrum_.levels(channel);
  for (size_t line = 0; line < levels.size(); ++line) {
    curve.points.push_back({static_cast<double>(line) * hzPerLine, double{levels[line]}});
  }
  return curve;
}

void LiveSpectrumView::showCurves() { setCurves({curveOf(0), curveOf(1)}); }

}  // namespace plumetta
