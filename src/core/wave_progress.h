// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// Told how far a long read, write or computation has come. Returning false asks it to stop.
struct WaveProgress {
  using Callback = bool (*)(float fractionDone, void* userValue);

  Callback callback = nullptr;
  void* userValue = nullptr;

  // True when the work shall go on.
  bool report(float fractionDone) const { return callback == nullptr || callback(fractionDone, userValue); }
};

}  // namespace plumetta
