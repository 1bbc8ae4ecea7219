// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/colour.h>

#include <array>

#include "app/skin.h"

namespace plumetta {

// The colours of the editor's own views.
struct Theme {
  explicit Theme(const Palette& palette);

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

  // The skin that is worn, with what suits the system's appearance at this moment where it leaves colours
  // open.
  static Theme current();
};

// Whether the system's appearance is a dark one.
bool systemIsDark();
wxColour toWx(Rgb colour, uint8_t opacity = 0xFF);
Rgb rgbOf(const wxColour& colour);

// The skin that the whole program wears. Wearing another one tells every window, as if the system's colours
// had changed.
const Skin& wornSkin();
void wearSkin(const Skin& skin);

}  // namespace plumetta
