// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/choice.h>

#include <optional>

#include "ui/form_dialog.h"
#include "ui/window_profile.h"

namespace plumetta {

// Any of the bit rates that are offered, in a list. Opens with the current one selected; a rate that is not
// in the list selects nothing.
class CMP3CustomDlg : public FormDialog {
 public:
  CMP3CustomDlg(wxWindow* parent, int bitRateKbits);
  // Nothing when the person cancelled.
  std::optional<int> askBitRate();

 private:
  wxChoice* rates_;
};

// The bit rate, kbit/s, that was chosen last.
int rememberedMp3BitRate(const WindowProfile& profile);
// Asks for one of the usual rates or a custom one, and remembers it. Nothing when the person cancelled.
std::optional<int> askMp3BitRate(wxWindow* parent, WindowProfile& profile);

}  // namespace plumetta
