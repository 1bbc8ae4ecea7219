// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/spectrum_words.h"

#include "dsp/spectrum.h"
#include "ui/lane_header.h"
#include "ui/text.h"

namespace plumetta {
namespace {

wxString withMinus(wxString text) {
  text.Replace("-", toWx("\u2212"));
  return text;
}

}  // namespace

wxString hzText(double hz) {
  return hz < 1000 ? wxString::Format("%.1f Hz", hz) : wxString::Format("%.3f kHz", hz / 1000);
}

wxString dbText(double db) {
  return db < -300 ? toWx("\u2212\u221E dB") : withMinus(wxString::Format("%.1f dB", db));
}

// Octaves below C0 keep their hyphen's place. The sharp stays a number sign: many fonts lack its own.
wxString noteText(double hz) { return withMinus(toWx(noteName(hz))); }

wxString channelLabel(int channel, int channels) {
  return channels > 2    ? "Channel " + channelName(channel, channels)
         : channels == 2 ? wxString(channel == 0 ? "Left" : "Right")
                         : wxString("Level");
}

}  // namespace plumetta
