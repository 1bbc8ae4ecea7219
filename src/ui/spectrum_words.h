// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/string.h>

namespace plumetta {

// What readouts of spectra say.
wxString hzText(double hz);
// With a real minus sign; infinity for silence.
wxString dbText(double db);
// The nearest note; empty where there is none.
wxString noteText(double hz);
wxString channelLabel(int channel, int channels);

}  // namespace plumetta
