// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/slider.h>
#include <wx/toolbar.h>

#include <atomic>

#include "ui/action_menus.h"

namespace plumetta {

// The general volume: a slider from 0 to 2; a double click makes it 1. The factor may be changed from
// elsewhere, on any thread.
class VolumeSlider : public wxSlider {
 public:
  VolumeSlider(wxWindow* parent, std::atomic<float>& volume);
  // Shows the factor as it is now.
  void follow();

 private:
  void setVolume(float factor);

  std::atomic<float>& volume_;
  float shown_ = -1;
};

// "-6.0 dB", "silent".
wxString volumeText(float factor);

// The buttons of playing and recording, read off their actions, and the general volume.
class TransportBar : public wxToolBar {
 public:
  TransportBar(wxWindow* parent, const ActionMenus& menus, std::atomic<float>& volume);
  // Brings the buttons into step with their actions, and the slider with the volume. Cheap when nothing has
  // changed. `marked` is the record button lit up.
  void follow(bool marked);
  // The keys of actions have changed.
  void showKeys();
  VolumeSlider& volume() { return *volume_; }

 private:
  void showIcons();

  const ActionMenus& menus_;
  VolumeSlider* volume_;
  bool marked_ = false;
};

}  // namespace plumetta
