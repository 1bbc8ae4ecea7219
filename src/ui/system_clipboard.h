// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/system_clipboard.h"

namespace plumetta {

// The desktop's clipboard by way of the toolkit.
class DesktopClipboard : public SystemClipboard {
 public:
  void offer(std::shared_ptr<const CWave> audio, int32_t frames) override;
  std::optional<std::string> waveImage() override;
  // Leaves what was offered to the system, where the system keeps it; too much of it goes with the program.
  void leaveContent();

 private:
  size_t offeredBytes_ = 0;
};

}  // namespace plumetta
