// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/plain_samples.h"

#include "formats/frame_sink.h"

namespace plumetta {
namespace {

int documentBits(Encoding encoding) {
  return encoding == Encoding::adpcm4 ? 16 : 8 * bytesPerSample(encoding);
}

uint16_t documentTag(Encoding encoding) {
  return encoding == Encoding::float32 || encoding == Encoding::float64 ? kFormatFloat : kFormatPcm;
}

}  // namespace

LoadResult readPlainSamples(InputStream& in, const PlainSamples& plain, CWave& wave) {
  if (plain.frames > kMaxFrames) return LoadResult::tooLong();
  const Encoding encoding = plain.sample.encoding;
  FrameSink sink(wave);
  LoadResult result = sink.begin(plain.sampleRate, plain.channels, documentBits(encoding),
                                 documentTag(encoding), plain.frames, in.remaining());
  if (result.status != LoadStatus::loaded) return result;
  int64_t framesRead = 0;
  const auto decoded = decodeSamples(in, plain.sample, wave.samples(), plain.frames, plain.channels,
                                     wave.progress, framesRead);
  if (decoded == CodecResult::cancelled) return {LoadStatus::cancelled, {}, {}, {}};
  sink.added(framesRead);
  sink.end();
  if (framesRead < plain.frames) {
    result.warnings.push_back("The file is truncated: only the audio that is there was loaded.");
  }
  return result;
}

}  // namespace plumetta
