// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "formats/format.h"
#include "platform/pages_ahead.h"

namespace plumetta {

// Fills a buffer with frames of which a file only claims how many there are: room is made as they come, and
// what was not used is given back at the end.
class FrameSink {
 public:
  explicit FrameSink(CWave& wave) : wave_(wave) {}

  // A fresh buffer of this format. `claimedFrames` is believed as far as a file of `fileBytes` makes it
  // likely. `formatTag` is kFormatPcm or kFormatFloat.
  LoadResult begin(uint32_t sampleRate, int channels, int bits, uint16_t formatTag, int64_t claimedFrames,
                   uint64_t fileBytes);
  // Where the next `frames` frames go, interleaved; null when a document can't hold them, see `refusal`.
  float* room(int64_t frames);
  void added(int64_t frames) { frames_ += frames; }
  int64_t frames() const { return frames_; }
  // Why there was no room.
  LoadResult refusal() const { return refusal_; }
  // The buffer holds what was added.
  void end();

 private:
  CWave& wave_;
  int channels_ = 0;
  int64_t capacity_ = 0;
  int64_t frames_ = 0;
  LoadResult refusal_;
  std::optional<PagesAhead> pages_;
};

}  // namespace plumetta
