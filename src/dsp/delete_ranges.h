// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "core/wave.h"
#include "dsp/frame_range.h"

namespace plumetta {

// Removes many ranges at once, to the result of `CWave::deleteRange` for each of them, in one pass over the
// samples. The ranges ascend, lie in the buffer and don't touch; at least one frame must be left.
void deleteRanges(CWave& wave, const std::vector<FrameRange>& ranges);

}  // namespace plumetta
