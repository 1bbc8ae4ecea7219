// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/panel.h>
#include <wx/scrolbar.h>

#include <functional>
#include <optional>

#include "doc/document.h"
#include "ui/wave_view.h"

namespace plumetta {

class LaneHeader;
class MarkerStrip;
class OverviewStrip;
class TimeRuler;
class WaveformCanvas;
class ViewWindow;

// The whole content of a document window: overview, time ruler, markers, one lane a channel, scroll bar. It
// listens to its document.
class DocumentPanel : public wxPanel, public DocumentListener {
 public:
  DocumentPanel(wxWindow* parent, CPlumettaDoc& doc, DisplaySettings& settings);
  ~DocumentPanel() override;

  void zoomIn();
  void zoomOut();
  void zoomToSelection();
  void zoomAll();
  void zoomVerticalIn();
  void zoomVerticalOut();
  void zoomVerticalReset();
  // Scrolls as little as needed for a frame to be seen.
  void showFrame(int32_t frame) { view_.show(frame); }

  CPlumettaDoc& document() const { return view_.doc; }
  // The frames from one side of the waveform to the other; `showFrames` brings others there, as far as the
  // document goes.
  struct Stretch {
    double first, length;
  };
  Stretch visibleFrames() const { return {view_.scale().first, view_.span()}; }
  void showFrames(Stretch stretch) { view_.showStretch(stretch.first, stretch.length); }
  // What is heard of this document; nothing when it isn't played.
  std::optional<double> playFrame() const { return view_.playFrame; }
  std::string positionText(int64_t frame) const { return view_.positionText(frame); }
  TimeFormat timeFormat() const { return view_.timeFormat(); }

  // What is heard of this document; nothing when it isn't played. The view scrolls along if that is wanted.
  void showPlayFrame(std::optional<double> frame);
  // The document takes over what playing has moved.
  void followPlayback() { view_.doc.followPlayback(); }

  // The fields of a status bar, as the person counts time at this moment.
  wxString statusFormat() const;
  wxString statusLength() const;  // in frames as well
  wxString statusCursor() const;
  wxString statusSelection() const;

  std::function<void()> onStatusChanged;
  std::function<void()> onTitleChanged;
  std::function<void()> onSettingsChanged;  // chosen in this panel, for all documents

  // The settings of the display have changed.
  void followSettings() { refreshAll(); }

  void samplesChanged() override;
  void annotationsChanged() override;
  void viewChanged() override;
  void titleChanged() override;
  void playbackStopped() override;

  void SetFocus() override;

 private:
  void arrange();
  void refreshAll();
  void followAnnotations();
  void syncScrollBar();
  void onScroll(wxScrollEvent& event);
  void onCanvasSize(wxSizeEvent& event);
  void onCharHook(wxKeyEvent& event);

  WaveView view_;
  OverviewStrip* overview_;
  TimeRuler* ruler_;
  MarkerStrip* markers_;
  WaveformCanvas* canvas_;
  LaneHeader* header_;
  wxScrollBar* scrollBar_;
};

}  // namespace plumetta
