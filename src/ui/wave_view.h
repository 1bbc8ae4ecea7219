// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "app/setting_groups.h"
#include "doc/command.h"
#include "doc/document.h"
#include "doc/view_geometry.h"
#include "ui/theme.h"

namespace plumetta {

// Annotations as they would be if the drag that is going on ended now.
struct DragPreview {
  struct MarkerPlace {
    int index;
    int32_t frame;
  };
  std::optional<MarkerPlace> marker;
  std::optional<std::pair<int32_t, int32_t>> loop;
  std::optional<CVolumeEnvelope> envelope;
  struct SampleValue {
    int32_t frame;
    int channel;
    float value;
  };
  std::optional<SampleValue> sample;
};

// What the parts of a document window share: which stretch of which document they show, and how. Scroll
// position and zoom live in the document, so that undo brings them back.
class WaveView {
 public:
  WaveView(CPlumettaDoc& document, DisplaySettings& displaySettings)
      : doc(document), settings(displaySettings) {}

  CPlumettaDoc& doc;
  DisplaySettings& settings;  // of all documents together
  Theme theme = Theme::current();
  DragPreview preview;
  std::optional<double> playFrame;         // what is heard; nothing while this document isn't played
  std::function<void()> onRefresh;         // everything shall be drawn again
  std::function<void()> onPreviewChanged;  // annotations shall be drawn again
  std::function<void()> onSettingsChanged;

  // Width of the waveform in pixels.
  int width() const { return width_; }
  void setWidth(int width) { width_ = width; }
  FrameScale scale() const;
  // Frames that the window spans.
  double span() const { return scale().framesPerPixel * (width_ > 1 ? width_ - 1 : 1); }

  void zoomAbout(double x, double factor);
  // About the cursor when it can be seen, else about the middle.
  void zoomBy(double factor);
  void zoomAll();
  void zoomToSelection();
  void scrollTo(double firstFrame);
  void scrollBy(double pixels) { scrollTo(scale().frame(pixels)); }
  void show(double frame);
  // Fills the window with so many frames from this one on.
  void showStretch(double first, double frames);
  // Turns the page when what is heard leaves it.
  void followPlayback(double before, double now);

  double amplitudeZoom() const { return amplitudeZoom_; }
  void setAmplitudeZoom(double zoom);
  bool decibels() const { return decibels_; }
  void setDecibels(bool decibels);
  TimeFormat timeFormat() const { return static_cast<TimeFormat>(settings.timeFormat); }
  // Of every document.
  void setTimeFormat(TimeFormat format);

  // A frame that an end of a selection was dragged to, at a zero crossing nearby if the settings want that.
  int32_t selectionEnd(int32_t frame) const;
  // A position as the ruler counts.
  std::string positionText(int64_t frame) const;

  const CVolumeEnvelope& envelope() const {
    return preview.envelope ? *preview.envelope : doc.wave().envelope;
  }
  int32_t markerFrame(int index) const;
  std::pair<int32_t, int32_t> loopRange(int index) const;
  void clearPreview();

  // Runs a row of the command table.
  template <typename... Values>
  bool run(const char* id, Values... values) {
    return runWith(id, {std::move(values)...});
  }

 private:
  bool runWith(const char* id, Arguments arguments);
  void apply(const FrameScale& scale);
  void refresh();

  int width_ = 1;
  double amplitudeZoom_ = 1;
  bool decibels_ = false;
};

}  // namespace plumetta
