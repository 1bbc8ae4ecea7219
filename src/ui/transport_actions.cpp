// SPDX-License-Identifier: GPL-3.0-or-later
// The menu of playing and recording.
#include "ui/audio_dialog.h"
#include "ui/main_frame.h"
#include "ui/routing_dialog.h"

namespace plumetta {
namespace {

Action checkable(Action action, std::function<bool()> checked) {
  action.checked = std::move(checked);
  return action;
}

}  // namespace

MenuPlan MainFrame::transportMenu() {
  const auto document = [this] { return tabs_->active() != nullptr; };
  const auto playing = [this] { return sound_.playing(); };
  const auto either = [=] { return playing() || document(); };
  const auto winding = [this](WindMode mode) { return [this, mode] { return sound_.winding(mode); }; };
  return {"&Transport",
          {checkable({"play", "&Play", "Space", "From the selection's start or the cursor; again to stop",
                      [this] { sound_.play(false); }, document},
                     playing),
           {"play-all", "Play &all", "Shift+Space", "The whole file, whatever is selected",
            [this] { sound_.play(true); }, document},
           {"pause", "Pa&use", "K", "Halt here, and go on from here", [this] { sound_.pause(); }, either},
           {"stop", "&Stop", "Esc", "Stop and go back to the cursor", [this] { sound_.stop(); }, playing},
           kSeparator,
           checkable({"rewind", "&Rewind", "J", "Play backwards in leaps",
                      [this] { sound_.wind(WindMode::rewind); }, document},
                     winding(WindMode::rewind)),
           checkable({"forward", "&Forward", "L", "Play forwards in leaps",
                      [this] { sound_.wind(WindMode::forward); }, document},
                     winding(WindMode::forward)),
           {"back-to-start", "&Back to the start", "Ctrl+Home", "Put the cursor at the first frame",
            [this] { sound_.backToStart(); }, document},
           checkable({"loop", "&Loop", "Ctrl+Shift+L", "Play the selection or the file again and again",
                      [this] { sound_.toggleLoop(); }},
                     [this] { return sound_.looping(); }),
           kSeparator,
           checkable({"record", "Re&cord", "Ctrl+R", "From the input, until it is chosen again",
                      [this] { sound_.toggleRecord(); }},
                     [this] { return sound_.recorder().recording(); }),
           {"record-duration", "Record with &duration…", "Ctrl+Shift+R",
            "From the input, for a number of seconds", [this] { sound_.recordWithDuration(this); }},
           checkable({"monitor", "&Monitor input", "", "Show the level of the input",
                      [this] { sound_.toggleMonitor(); }},
                     [this] { return sound_.recorder().monitoring(); })}};
}

void MainFrame::configureAudio() {
  if (!sound_.mayConfigure()) return;
  if (askAudioConfiguration(this, app_)) sound_.configured();
}

void MainFrame::configureRouting() {
  sound_.stopPlayer();
  if (!askRouting(this, app_.settings().playback, app_.output().channelCount(app_.settings().output))) return;
  applySettings();
  sound_.startPlayer();
}

void MainFrame::followSound() {
  showTitle();
  SetStatusText(sound_.status(), StatusLine::kSound);
  menus_.refresh();
  transportBar_->follow(sound_.recorder().buttonMarked());
}

}  // namespace plumetta
