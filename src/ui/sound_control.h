// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/string.h>
#include <wx/timer.h>

#include <functional>

#include "app/application.h"
#include "app/recorder.h"
#include "ui/document_tabs.h"
#include "ui/play_follower.h"
#include "ui/window_prompter.h"

namespace plumetta {

// Playing and recording as the main window has them: the commands act on the document in front, and timers
// look after device, take and play cursor as long as there is something to look after.
class SoundControl : public RecorderHost {
 public:
  SoundControl(Application& app, DocumentTabs& tabs, WindowPrompter& prompter);

  void play(bool wholeFile);
  void stop();
  // Halts where it is heard, so that the next play goes on from there; plays when nothing does.
  void pause();
  void wind(WindMode mode);
  void toggleLoop();
  // The cursor goes to the first frame; what plays goes on from there.
  void backToStart();
  void toggleRecord();
  void toggleMonitor();
  void recordWithDuration(wxWindow* parent);
  // Before the audio configuration opens: stops all playing and recording; false when the person wants to go
  // on recording. And once it has changed the settings: checks and stores them and starts the output again.
  bool mayConfigure();
  void configured();
  void startPlayer();

  bool playing() const { return controls().playing; }
  bool winding(WindMode mode) const { return playing() && controls().windMode == mode; }
  // A play cursor moves.
  bool following() const { return follower_.source() != nullptr; }
  bool looping() const { return controls().loop; }
  const Recorder& recorder() const { return recorder_; }
  // The largest input magnitude since it was last asked, for meters while `recorder().monitoring()`.
  float takeInputPeak(int channel) { return recorder_.takeInputPeak(channel); }

  // At start, once documents can be shown.
  void offerRecovery() { recorder_.offerRecovery(); }
  // Before the window closes: false when it is to stay. `stayedOpen` when it stays after all.
  bool confirmClose();
  void stayedOpen();
  // Ends everything that uses a device, within a few seconds whatever the devices do.
  void shutDown();

  // What goes on at the devices, for the status line.
  wxString status() const;
  // Buttons, title or status may have changed.
  std::function<void()> onChanged;

  CPlumettaDoc* activeDocument() override { return tabs_.active(); }
  void stopPlayer() override;
  void recorded(CPlumettaDoc& document) override;

 private:
  const PlaybackControls& controls() const { return app_.transport().controls(); }
  void started(bool playing);
  // After each command.
  void changed();
  void onWatch();
  void onSecond();
  // Whether a document may change at this moment, by no command of the person.
  bool mayIntervene() const;

  Application& app_;
  DocumentTabs& tabs_;
  WindowPrompter& prompter_;
  Recorder recorder_;
  PlayFollower follower_;
  wxTimer watchTimer_, secondTimer_;
  bool intervening_ = false;     // a message of a timer is up
  bool endedRecording_ = false;  // by a wish to close
};

}  // namespace plumetta
