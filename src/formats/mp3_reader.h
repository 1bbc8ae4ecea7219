// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"

namespace plumetta {

// MPEG audio by a run of frame headers that agree, at the start or behind an ID3 tag.
Likeness probeMp3(const FileHead& head);

// Whether, of a file that stands at its start, the first megabytes hold headers in a row somewhere: what the
// head doesn't show, behind some other data.
bool holdsMp3Frames(File& file);

// Fills `wave` from a file of MPEG audio frames (layers I to III), whatever stands before, between and behind
// them. Every frame that can be decoded is kept, encoder padding included. A file whose frames change between
// mono and stereo becomes stereo, with mono frames in both channels; one whose sample rate changes is kept
// whole at the last rate, with a warning.
LoadResult loadMp3(FileSystem& files, const std::string& path, CWave& wave);

}  // namespace plumetta
