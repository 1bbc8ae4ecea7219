// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "formats/format.h"
#include "formats/input_stream.h"

namespace plumetta {

// Samples that stand in a file one after the other, in one of our encodings.
struct PlainSamples {
  uint32_t sampleRate = 44100;
  int channels = 1;
  SampleFormat sample;
  int64_t frames = 0;  // no more than the file has bytes for
};

// Makes `wave` a buffer of the samples from the stream's position on, with the width of their encoding.
LoadResult readPlainSamples(InputStream& in, const PlainSamples& plain, CWave& wave);

}  // namespace plumetta
