// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sound_control.h"

#include <utility>

#include "doc/ruler_ticks.h"
#include "ui/form_dialog.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kWatchMilliseconds = 200;
constexpr int kLongestSeconds = 24 * 60 * 60;  // of a recording with duration

}  // namespace

SoundControl::SoundControl(Application& app, DocumentTabs& tabs, WindowPrompter& prompter)
    : app_(app), tabs_(tabs), prompter_(prompter), recorder_(app, *this), follower_(app, tabs) {
  follower_.onEnded = [this] { changed(); };
  watchTimer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onWatch(); });
  secondTimer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onSecond(); });
}

// ---- Playing --------------------------------------------------------------------------------------------

void SoundControl::play(bool wholeFile) {
  Transport& transport = app_.transport();
  started(wholeFile ? transport.playAll(tabs_.active()) : transport.play(tabs_.active()));
}

void SoundControl::started(bool playing) {
  if (playing) follower_.begin();
  changed();
}

void SoundControl::stop() {
  follower_.end();
  app_.transport().stop();
  changed();
}

void SoundControl::pause() {
  Transport& transport = app_.transport();
  if (!playing()) {
    play(false);
    return;
  }
  const std::optional<double> heard = follower_.heardFrame();
  transport.togglePlay(tabs_.active());
  PlaybackSource* const source = controls().source;
  // The engine has given out more than can be heard by now.
  if (heard && source != nullptr && source == follower_.source()) {
    source->setCursor(static_cast<int64_t>(*heard));
  }
  follower_.end();
  changed();
}

void SoundControl::wind(WindMode mode) {
  const bool restarts = controls().windMode == WindMode::none;
  Transport& transport = app_.transport();
  mode == WindMode::rewind ? transport.toggleRewind(tabs_.active()) : transport.toggleForward(tabs_.active());
  started(restarts && playing());
}

void SoundControl::toggleLoop() {
  app_.transport().toggleLoop();
  app_.settings().playback.loop = looping();
  app_.saveSettings();
  changed();
}

void SoundControl::backToStart() {
  DocumentPanel* const panel = tabs_.activePanel();
  if (panel == nullptr) return;
  CPlumettaDoc& doc = *tabs_.active();
  doc.selectNone();
  doc.setCursor(0);
  panel->showFrame(0);
  if (playing() && controls().source == &doc) play(false);
}

// ---- Recording ------------------------------------------------------------------------------------------

void SoundControl::toggleRecord() {
  recorder_.toggleRecord();
  changed();
}

void SoundControl::toggleMonitor() {
  recorder_.toggleMonitor();
  changed();
}

void SoundControl::recordWithDuration(wxWindow* parent) {
  if (!recorder_.mayRecordWithDuration()) return;
  FormDialog form(parent, "Record with duration");
  const auto* seconds =
      form.addText("Duration", "seconds", wxString::Format("%d", recorder_.storedDuration()),
                   wholeNumberBetween(1, kLongestSeconds));
  if (!form.ask("&Record")) return;
  recorder_.recordWithDuration(static_cast<int>(checkedNumber(*seconds)));
  changed();
}

void SoundControl::recorded(CPlumettaDoc& document) {
  if (tabs_.panelOf(&document) == nullptr) {
    tabs_.add(document);
  } else {
    tabs_.activate(document);
  }
}

// ---- Devices --------------------------------------------------------------------------------------------

void SoundControl::stopPlayer() {
  follower_.end();
  app_.output().stop();
  changed();
}

void SoundControl::startPlayer() {
  app_.startOutput();
  changed();
}

bool SoundControl::mayConfigure() {
  if (!recorder_.confirmConfiguration()) return false;
  stopPlayer();
  return true;
}

void SoundControl::configured() {
  recorder_.checkInputRate();
  startPlayer();
}

bool SoundControl::confirmClose() {
  endedRecording_ = recorder_.recording();
  return recorder_.confirmClose();
}

void SoundControl::stayedOpen() {
  if (std::exchange(endedRecording_, false)) recorder_.offerRecovery();
  changed();
}

void SoundControl::shutDown() {
  onChanged = nullptr;
  stopPlayer();
  watchTimer_.Stop();
  secondTimer_.Stop();
}

wxString SoundControl::status() const {
  if (recorder_.recording()) {
    const double seconds = static_cast<double>(recorder_.framesRecorded()) / recorder_.inputRate();
    return "Recording " + toWx(formatTime(seconds, 0));
  }
  if (recorder_.monitoring()) return wxString::Format("Input %d Hz", recorder_.inputRate());
  if (!app_.output().running()) return "Output off";
  const int late = app_.output().underruns();
  return wxString::Format(late == 1 ? "Output %d Hz, %d dropout" : "Output %d Hz, %d dropouts",
                          controls().outputRate.load(), late);
}

// ---- Timers ---------------------------------------------------------------------------------------------

void SoundControl::changed() {
  const bool watch = app_.output().running() || recorder_.busy();
  if (watch && !watchTimer_.IsRunning()) watchTimer_.Start(kWatchMilliseconds);
  if (!watch) watchTimer_.Stop();
  if (recorder_.recording() && !secondTimer_.IsRunning()) {
    secondTimer_.Start(1000);  // anew with each recording, whose seconds it counts
  } else if (!recorder_.recording() && secondTimer_.IsRunning()) {
    secondTimer_.Stop();
    prompter_.status("");  // no longer recording during so many seconds
  }
  if (onChanged) onChanged();
}

bool SoundControl::mayIntervene() const {
  return !intervening_ && !prompter_.working() && !prompter_.asking();
}

void SoundControl::onWatch() {
  if (!intervening_ && !prompter_.working()) {
    intervening_ = true;
    app_.watchSound();
    intervening_ = false;
  }
  if (!playing() && !app_.output().running()) follower_.end();
  if (mayIntervene()) {
    intervening_ = true;
    recorder_.watch();
    intervening_ = false;
  }
  changed();
}

void SoundControl::onSecond() {
  if (mayIntervene()) recorder_.everySecond();
  changed();
}

}  // namespace plumetta
