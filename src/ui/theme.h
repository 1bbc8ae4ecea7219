// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/colour.h>

#include <array>

namespace plumetta {

// The colours of the editor's own views.
struct Theme {
  bool dark;

  wxColour lane;          // behind the waveform
  wxColour laneSelected;  // behind its selected part
  wxColour margin;        // rulers, switches, marker strip
  wxColour line;          // between areas
  wxColour grid;
  wxColour zero;
  wxColour text;
  wxColour textQuiet;
  wxColour accent;  // focus, switches, window frame of the overview

  wxColour peak, rms;                  // waveform
  wxColour peakSelected, rmsSelected;  // its selected part
  wxColour peakOff, rmsOff;            // of an inactive channel
  wxColour clip;                       // beyond full scale

  wxColour cursor;
  wxColour playCursor;
  wxColour marker, markerText;
  wxColour loop;
  wxColour envelope;

  std::array<wxColour, 8> curves;  // of the channels in a plot; a ninth has the first one's

  // What suits the system's appearance at this moment.
  static Theme ofSystem();
};

}  // namespace plumetta
