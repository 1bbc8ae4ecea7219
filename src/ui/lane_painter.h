// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/brush.h>
#include <wx/graphics.h>

#include <vector>

#include "doc/peak_pyramid.h"
#include "doc/view_geometry.h"
#include "ui/wave_view.h"

namespace plumetta {

// Draws the waveform of one channel into its lane: columns from smallest to largest sample with their RMS
// body, a line through the samples where there are fewer than one a pixel, and the samples themselves where
// they stand far enough apart.
class LanePainter {
 public:
  // `columnWidth`: a device pixel in logical ones. Paints from x = left up to right.
  LanePainter(wxGraphicsContext& gc, WaveView& view, double columnWidth, int left, int right);

  void paint(int channel, const AmplitudeScale& lane);
  // Whether samples stand far enough apart to be seen one by one.
  static bool showsSamples(const FrameScale& scale);

 private:
  struct Paths;

  bool steep(int channel, const AmplitudeScale& lane) const;
  int32_t frameNear(double frame) const;
  // Column i of `columns_` stands at pixel (first + i) × columnWidth_.
  void peakColumns(int channel, int64_t first);
  void lineColumns(int channel, int64_t first);
  void paintColumns(int channel, const AmplitudeScale& lane, bool active);
  void paintLine(int channel, const AmplitudeScale& lane, bool active);
  void paintSamples(int channel, const AmplitudeScale& lane, bool active);
  void addColumn(Paths& paths, const AmplitudeScale& lane, double x, const PeakColumn& column, float low,
                 float high) const;

  wxGraphicsContext& gc_;
  WaveView& view_;
  FrameScale scale_;
  double columnWidth_;
  int left_, right_;
  std::vector<PeakColumn> columns_;
};

}  // namespace plumetta
