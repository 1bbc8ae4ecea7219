// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/wave.h"

namespace plumetta {

// The clipboard that all programs of the desktop share. UI thread.
class SystemClipboard {
 public:
  virtual ~SystemClipboard() = default;

  // Puts the first `frames` frames of the audio there. Costs nothing now: they are converted when another
  // program asks for them, so the audio may not change any more.
  virtual void offer(std::shared_ptr<const CWave> audio, int32_t frames) = 0;
  // The RIFF WAVE image that lies there; nothing when there is none.
  virtual std::optional<std::string> waveImage() = 0;
};

}  // namespace plumetta
