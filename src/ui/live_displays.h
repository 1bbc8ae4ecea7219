// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/panel.h>
#include <wx/stopwatch.h>
#include <wx/timer.h>

#include <array>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "app/application.h"
#include "audio/heard_position.h"
#include "audio/play_clock.h"
#include "audio/sound_tap.h"
#include "ui/action_menus.h"
#include "ui/clock_view.h"
#include "ui/dragged_panes.h"
#include "ui/goniometer_view.h"
#include "ui/live_spectrum_view.h"
#include "ui/meter_view.h"
#include "ui/pan_view.h"
#include "ui/scope_view.h"
#include "ui/window_profile.h"

namespace plumetta {

// The displays of what goes on, each in a pane that can be moved and closed, around the window that has the
// room in the middle. They are drawn by a timer as long as something plays, comes in or still falls; with
// nothing of that they cost nothing.
class LiveDisplays : public wxPanel {
 public:
  LiveDisplays(wxWindow* parent, Application& app, WindowProfile& profile);
  ~LiveDisplays() override;

  // Once: what stands in the middle, a child of this. Brings the panes to where they were last.
  void surround(wxWindow& middle);
  // A row with a check mark for each display.
  std::vector<Action> actions();
  void storeLayout();

  // Whether the input is running, and the largest |x| of one of its channels since it was last asked.
  std::function<bool()> inputRuns = [] { return false; };
  std::function<float(int channel)> takeInputPeak = [](int) { return 0.0f; };
  // What the time display shows while nothing plays; nothing for no figures.
  std::function<std::optional<PlayTime>()> restingTime = [] { return std::nullopt; };

 private:
  struct Display {
    const char* id;     // in the layout; never changes
    const char* title;  // of the pane
    const char* entry;  // in the menu
    wxWindow* view;
    int row, position;  // at the bottom; row 0 is the lowest
    wxSize size;        // at first, independent of the display's scale
    int share;          // of its row's width
    bool wanted;        // by the person; shown as far as there is room
  };

  std::vector<Display> makeDisplays();
  void addPanes();
  bool isShown(const wxWindow* view);
  void want(Display& display, bool wanted);
  // Shows all that is wanted, but for the last ones of the list where the middle would get too small.
  void fit();
  bool middleHasRoom() const;
  // A pane has been dragged elsewhere.
  void adoptDrag();
  // The engine feeds only what is to be seen.
  void connect();

  bool playing() const { return app_.transport().controls().playing; }
  bool soundWanted();
  bool anythingMoves();
  void onIdle(wxIdleEvent& event);
  void onTimer(wxTimerEvent&);
  void followQueue(double seconds);
  std::array<float, kMaxOutputChannels> takeHeardPeaks();
  void followMeters(double seconds);
  void followSound(double seconds);
  void followTime();
  size_t outputChannels();

  Application& app_;
  WindowProfile& profile_;
  SoundTap tap_;
  PlayClock clock_;
  struct ComingPeaks {
    double heardAt;  // on the clock of `sinceStart_`
    std::array<float, kMaxOutputChannels> outputs;
  };
  std::deque<ComingPeaks> comingPeaks_;
  double queuedSeconds_ = 0;  // of sound on its way to the ear
  bool played_ = false;       // at the last tick
  StereoTrail trail_;
  MeterView* meters_;
  ClockView* time_;
  PanView* pan_;
  ScopeView* scope_;
  LiveSpectrumView* spectrum_;
  GoniometerView* goniometer_;
  wxWindow* middle_ = nullptr;
  std::vector<Display> displays_;  // the most useful first
  wxString wholeLayout_;           // with all that is wanted, while some of it is not shown; else empty
  size_t outputChannels_ = 2;      // of the device that ran last
  wxTimer timer_;
  wxStopWatch sinceTick_;
  wxStopWatch sinceStart_;
  HeardPosition heard_;
  uint32_t playedRate_ = 0;  // of what `heard_` follows; 0 while nothing plays
  DraggedPanes panes_;
};

}  // namespace plumetta
