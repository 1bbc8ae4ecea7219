// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

#include "audio/level_meter.h"
#include "ui/live_view.h"

namespace plumetta {

// Level meters, a bar a channel: those of the output and, while there is an input, those of the input.
// They lie in a wide window and stand in a tall one. A click puts the clip lights out.
class MeterView : public LiveView {
 public:
  explicit MeterView(wxWindow* parent);

  // The largest |x| of each channel in the `seconds` since the last call. Bars come and go with the channels.
  void advance(std::span<const float> outputs, std::span<const float> inputs, double seconds);
  bool falling() const;

 private:
  struct Bar {
    LevelMeter meter;
    wxString name;
    bool input;
  };
  // Where bars are: `start` and `length` along the levels, `first` and `pitch` across them.
  struct Layout {
    bool upright;
    double start, length;
    double first, pitch, thickness, groupGap;
  };

  void paint(wxGraphicsContext& gc, const wxSize& size) override;
  void setChannels(size_t outputs, size_t inputs);
  Layout layoutIn(const wxGraphicsContext& gc, const wxSize& size) const;
  double acrossOf(const Layout& layout, size_t bar) const;
  // A part of a bar, in fractions of its length.
  void fillPart(wxGraphicsContext& gc, const Layout& layout, size_t bar, const wxColour& colour, double from,
                double to) const;
  void paintBar(wxGraphicsContext& gc, const Layout& layout, size_t bar) const;
  void paintScale(wxGraphicsContext& gc, const Layout& layout) const;
  void paintName(wxGraphicsContext& gc, const Layout& layout, size_t bar) const;

  std::vector<Bar> bars_;  // outputs first
  size_t inputs_ = 0;
};

}  // namespace plumetta
