// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/arrstr.h>

namespace plumetta {

// What dialogs offer for the format of audio.

inline constexpr double kMaxRate = 4294967295.0;  // what the rate's 32-bit field holds

wxArrayString commonRates();
// From one channel on.
wxArrayString channelCounts();

}  // namespace plumetta
