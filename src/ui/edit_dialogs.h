// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "doc/command.h"
#include "doc/document.h"
#include "ui/window_profile.h"

class wxWindow;

namespace plumetta {

// The dialogs that are more than a list of parameters. Each remembers its values in the profile and gives
// nothing when the person cancelled.

struct NewFileChoice {
  uint32_t sampleRate;
  int channels;
  int bits;
  uint16_t formatTag;
  int64_t frames;
};
std::optional<NewFileChoice> askNewFile(wxWindow* parent, WindowProfile& profile);

struct SilenceChoice {
  int64_t position;
  int64_t lengthFrames;
};
std::optional<SilenceChoice> askSilence(wxWindow* parent, const CPlumettaDoc& doc, WindowProfile& profile);

// The frame that the cursor shall go to.
std::optional<int64_t> askPosition(wxWindow* parent, const CPlumettaDoc& doc, WindowProfile& profile);

}  // namespace plumetta
