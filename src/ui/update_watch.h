// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/timer.h>

#include <memory>

#include "app/updates.h"
#include "ui/window_prompter.h"

namespace plumetta {

// Asks for a newer version without holding up the window, and tells of it once nothing else waits for the
// person.
class UpdateWatch {
 public:
  UpdateWatch(Application& app, WindowPrompter& prompter);

  // On the person's demand: whatever comes of it is told.
  void ask();
  // At start, where the settings want it: only a newer version is worth a word.
  void askAtStart();
  bool asking() const { return check_ != nullptr; }
  // Ends what is under way.
  void stop();

 private:
  void begin(std::unique_ptr<UpdateCheck> check, bool onDemand);
  void look();

  Application& app_;
  WindowPrompter& prompter_;
  std::unique_ptr<UpdateCheck> check_;
  bool onDemand_ = false;
  wxTimer timer_;
};

}  // namespace plumetta
