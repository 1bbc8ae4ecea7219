// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "doc/command.h"

namespace plumetta {

// A recording on its way into a document: a file of raw interleaved 32-bit floats, little-endian, no header.
struct TakeImport {
  std::string path;
  int channels = 2;
  FrameOrTime at{};  // before which frame; 0 to the frame count
  // What the document takes over from the input; 0 leaves its own.
  int sampleRate = 0;
  int bitsPerSample = 0;
  bool undoable = true;
};

// Inserts a take as one undoable step. A mono document becomes stereo for a stereo take; a mono take goes to
// every channel; one with fewer channels than the document leaves the others silent; one with more is
// refused. In a document that holds audio a marker stays where the take begins. Of a file that is damaged or
// cut short, whatever is sound is taken, and a message says what is not. A refusal has shown its message and
// changed nothing.
CommandOutcome importTake(CPlumettaDoc& doc, const TakeImport& take);

// Whole frames in such a file; −1, with the reason, when it can't be opened.
int64_t framesOfTake(FileSystem& files, const std::string& path, int channels, std::string& reason);

}  // namespace plumetta
