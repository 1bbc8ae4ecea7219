// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/checklst.h>
#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/textctrl.h>
#include <wx/tglbtn.h>
#include <wx/timer.h>

#include "app/midi_setup.h"

namespace plumetta {

// Which MIDI input devices are open, and which controller drives which command. Learning takes the number
// from a controller that is moved; for that the chosen devices are opened while the dialog is up.
class CMidiConfigurationDlg : public wxDialog {
 public:
  // OK puts the choice into effect and into `settings`, which the caller stores.
  CMidiConfigurationDlg(wxWindow* parent, MidiRemote& remote, MidiSettings& settings, Prompter& prompter);
  ~CMidiConfigurationDlg() override;

 private:
  wxSizer* makeDevices();
  wxSizer* makeCommands();
  wxSizer* makeButtons();
  void show(const RemoteControllers& controllers);
  void select(long command);
  // Puts a number into the list, and into the field if that belongs to the command.
  void setNumber(long command, const wxString& number);
  std::array<bool, kMidiSlots> chosenDevices() const;

  void onLearn();
  void onTimer();
  void stopLearning();
  void onReset();
  void onOk();

  MidiRemote& remote_;
  MidiSettings& settings_;
  Prompter& prompter_;
  wxCheckListBox* devices_;
  wxListView* commands_;
  wxTextCtrl* number_;
  wxToggleButton* learn_;
  wxTimer timer_;
  std::array<bool, kMidiSlots> openBefore_{};
  bool devicesTouched_ = false;  // learning has opened others than were open before
  bool applied_ = false;
};

}  // namespace plumetta
