// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "core/wave.h"
#include "dsp/frame_range.h"

namespace plumetta {

// The frames at which sounds begin: where the level of all channels together, over 10 ms, rises by at least
// `riseDb` above that of the 80 ms before. Beginnings are at least 50 ms apart and louder than -60 dB of full
// scale; each is moved back to where its own rise starts. Ascending; the range must lie in the buffer.
std::vector<int32_t> findOnsets(const CWave& wave, FrameRange range, double riseDb);

}  // namespace plumetta
