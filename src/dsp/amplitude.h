// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/wave.h"
#include "dsp/frame_range.h"

namespace plumetta {

// Level and shape of the active channels over a range of frames. Levels are in dB of full scale; every gain
// is rounded to a 32-bit float before it multiplies a sample. Routines return false, and change nothing, when
// the range is refused as each of them says.

enum class FadeCurve { linear = 0, exponential = 1, sinus = 2, square = 3, cubic = 4 };
enum class FadeDirection { in, out };

// 10^(level / 20) as a 32-bit float.
float gainOfLevel(double levelDb);

// Refused outside the buffer and for a single frame.
bool fade(CWave& wave, FrameRange range, FadeCurve curve, FadeDirection direction);
// Multiplies; the range is clamped to the buffer. Nothing is clipped.
bool volume(CWave& wave, FrameRange range, float factor);
// Brings the loudest sample of all active channels together to the level; the range is clamped.
bool normalize(CWave& wave, FrameRange range, double levelDb);
// Limits samples to ± the level ("Truncate"). Refused outside the buffer and for a single frame.
bool clip(CWave& wave, FrameRange range, double levelDb);
// Subtracts from each channel its sum divided by (last - first): one less than the frames summed, kept so.
// Refused outside the buffer and for a single frame.
bool removeDc(CWave& wave, FrameRange range);
bool invert(CWave& wave, FrameRange range);
// Mirrors the range in time.
bool reverse(CWave& wave, FrameRange range);
// Draws a straight line between the range's end samples. Refused for a single frame.
bool interpolate(CWave& wave, FrameRange range);

// Left minus right on both channels, the last frame of the range left alone. Stereo only, whatever is active.
bool removeVocals(CWave& wave, FrameRange range);
// Exchanges left and right. Stereo only, whatever is active.
bool swapStereo(CWave& wave, FrameRange range);

// Blends the end of loop 0 into what precedes its start, over `fraction` of its length, so that it wraps
// without a click.
bool crossfadeLoop(CWave& wave, double fraction);

// Multiplies every channel by its curve of the volume envelope; the envelope stays as it is.
bool applyVolumeEnvelope(CWave& wave);

// A single full-scale sample at the frame.
bool setDirac(CWave& wave, int32_t frame);
// Silence before the frame, full scale from it on.
bool setStep(CWave& wave, int32_t frame);

}  // namespace plumetta
