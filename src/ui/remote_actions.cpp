// SPDX-License-Identifier: GPL-3.0-or-later
// What drives the window from outside: MIDI controllers and the media keys of a keyboard.
#include "app/midi_setup.h"
#include "ui/main_frame.h"

namespace plumetta {
namespace {

// The action that each command chooses; none for those that need no window.
const char* actionOf(RemoteCommand command) {
  switch (command) {
    case RemoteCommand::play:
      return "play";
    case RemoteCommand::stop:
      return "stop";
    case RemoteCommand::pause:
      return "pause";
    case RemoteCommand::record:
      return "record";
    case RemoteCommand::rewind:
      return "rewind";
    case RemoteCommand::forward:
      return "forward";
    case RemoteCommand::backToStart:
      return "back-to-start";
    case RemoteCommand::nextMarker:
      return "next-marker";
    case RemoteCommand::previousMarker:
      return "previous-marker";
    case RemoteCommand::addMarker:
      return "marker-at-cursor";
    case RemoteCommand::toggleWindow:
      return "next-window";
    case RemoteCommand::volume:
    case RemoteCommand::pan:
      break;
  }
  return nullptr;
}

const char* actionOf(int key) {
  switch (key) {
    case WXK_MEDIA_PLAY_PAUSE:
      return "pause";
    case WXK_MEDIA_STOP:
      return "stop";
    case WXK_MEDIA_NEXT_TRACK:
      return "next-marker";
    case WXK_MEDIA_PREV_TRACK:
      return "previous-marker";
    default:
      return nullptr;
  }
}

}  // namespace

void MainFrame::startRemote() {
  // From a device's thread; `CallAfter` queues it for this one.
  app_.midi().setPoster(
      [this](RemoteCommand command, int) { CallAfter([this, command] { onRemote(command); }); });
  startMidi(app_.midi(), app_.settings().midi, prompter_);
}

void MainFrame::onRemote(RemoteCommand command) {
  const char* const action = actionOf(command);
  // A document must not change under a dialog that asks about it.
  if (action != nullptr && !prompter_.asking()) menus_.choose(action);
  followSound();  // the volume may have changed
}

void MainFrame::onMediaKey(wxKeyEvent& event) {
  const char* const action = app_.settings().program.mediaKeys ? actionOf(event.GetKeyCode()) : nullptr;
  if (action == nullptr || !menus_.choose(action)) event.Skip();
}

}  // namespace plumetta
