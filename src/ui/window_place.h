// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/frame.h>
#include <wx/toplevel.h>

#include "ui/window_profile.h"

namespace plumetta {

// A window that is larger than its display is made as large as that, one that hangs over an edge is moved.
void keepOnDisplay(wxTopLevelWindow& window);

// Remembers where a frame stands. Sizes are kept independent of the display's scale.
class WindowPlace {
 public:
  WindowPlace(wxFrame& frame, WindowProfile& profile);

  // Puts the frame where it stood last, as far as that can still be seen and makes sense.
  void restore();
  void store();

 private:
  void follow();
  void onFirstActivation(wxActivateEvent& event);

  wxFrame& frame_;
  WindowProfile& profile_;
  wxRect place_;   // where the frame shall stand once it is shown
  wxRect normal_;  // while neither maximised nor an icon
};

}  // namespace plumetta
