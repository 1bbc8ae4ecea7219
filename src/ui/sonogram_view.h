// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "doc/frequency_axis.h"
#include "doc/ruler_ticks.h"
#include "dsp/sonogram.h"
#include "ui/level_colours.h"
#include "ui/live_view.h"

namespace plumetta {

// Spectra along time as pictures, one above the other for several channels: time to the right, frequency
// upwards, levels as colours. The wheel zooms along time about the pointer, with Ctrl or left of the pictures
// along frequency; with Shift it scrolls.
class SonogramView : public LiveView {
 public:
  // What the owner knows of the document.
  struct Scene {
    double first = 0, length = 0;  // the frames from one side to the other
    int32_t frames = 0;
    uint32_t sampleRate = 44100;
    TimeFormat timeFormat = kTimeSamples;
    int32_t cursor = 0, lower = 0, upper = 0;  // the selection; equal for none
    std::optional<double> playFrame;
    std::vector<wxString> names;  // of the pictures, empty for none

    bool operator==(const Scene&) const = default;
  };
  struct Place {
    double frame;
    double hz;
    int plane;
  };

  explicit SonogramView(wxWindow* parent);

  void setScene(const Scene& scene);
  // Valid until the next call; null for none. To be called again when it has got on.
  void setSonogram(const Sonogram* sonogram);
  // All that there is to see; zooming stays within.
  void setFrequencies(const FrequencyAxis& whole);
  // Levels from this far below full scale have colours.
  void setDepth(int decibels);
  // The pictures' width in device pixels.
  int columns() const;

  std::function<void(std::optional<Place>)> onPointer;
  std::function<void(int32_t frame)> onClick;
  std::function<void(int32_t from, int32_t to)> onSelect;
  std::function<void(double first, double length)> onStretch;  // wanted to be seen

 protected:
  void paint(wxGraphicsContext& gc, const wxSize& size) override;
  void themeChanged() override;

 private:
  struct Press {
    int x;
    int32_t frame;
    bool moved;
  };

  wxRect area() const;
  int planes() const;
  wxRect laneRect(int plane) const;
  double xOf(double frame) const;
  double frameAt(int x) const;
  int32_t frameInFile(int x) const;
  std::optional<Place> placeAt(const wxPoint& at) const;

  void picturesChanged();
  void renewPictures(wxGraphicsContext& gc);
  wxGraphicsBitmap pictureOf(wxGraphicsContext& gc, int plane, int rows) const;
  void paintPicture(wxGraphicsContext& gc, int plane);
  void paintFrequencies(wxGraphicsContext& gc, const wxRect& lane);
  void paintTimes(wxGraphicsContext& gc);
  void paintLines(wxGraphicsContext& gc);
  void paintName(wxGraphicsContext& gc, int plane);
  void paintLegend(wxGraphicsContext& gc);

  void onLeftDown(wxMouseEvent& event);
  void onMotion(wxMouseEvent& event);
  void onLeftUp(wxMouseEvent& event);
  void onWheel(wxMouseEvent& event);
  void zoomFrequencies(const wxPoint& at, double factor);
  void zoomTime(int x, double factor);
  void endPress();

  Scene scene_;
  const Sonogram* sonogram_ = nullptr;
  FrequencyAxis whole_, axis_;
  int depthDb_ = 120;
  LevelColours colours_;
  std::vector<wxGraphicsBitmap> pictures_;
  bool stale_ = true;  // the pictures are not those of sonogram, axis, depth, colours and size
  std::optional<Place> pointer_;
  std::optional<Press> press_;
};

}  // namespace plumetta
