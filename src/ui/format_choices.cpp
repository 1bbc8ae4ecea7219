// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/format_choices.h"

#include "core/wave.h"

namespace plumetta {

wxArrayString commonRates() {
  wxArrayString rates;
  for (const char* rate :
       {"8000", "11025", "16000", "22050", "32000", "44100", "48000", "88200", "96000", "176400", "192000"}) {
    rates.Add(rate);
  }
  return rates;
}

wxArrayString channelCounts() {
  wxArrayString counts;
  counts.Add("1 (mono)");
  counts.Add("2 (stereo)");
  for (int i = 3; i <= kMaxChannels; ++i) counts.Add(wxString::Format("%d", i));
  return counts;
}

}  // namespace plumetta
