// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/raw_file.h"

#include <algorithm>
#include <limits>

#include "formats/losses.h"
#include "formats/plain_samples.h"

namespace plumetta {

std::optional<SampleFormat> rawSampleFormat(int bits, ByteOrder byteOrder, RawSign sign) {
  const SignType signType = sign == RawSign::isUnsigned ? SignType::isUnsigned : SignType::isSigned;
  const bool isSigned = sign == RawSign::isSigned;
  const bool isFloat = sign == RawSign::isFloat;
  if (bits == 8 && !isFloat) return SampleFormat{Encoding::pcm8, byteOrder, signType};
  if (bits == 16 && !isFloat) return SampleFormat{Encoding::pcm16, byteOrder, signType};
  if (bits == 24 && isSigned) return SampleFormat{Encoding::pcm24, byteOrder, signType};
  if (bits == 32 && isSigned) return SampleFormat{Encoding::pcm32, byteOrder, signType};
  if (bits == 32 && isFloat) return SampleFormat{Encoding::float32, byteOrder, signType};
  if (bits == 64 && (isSigned || isFloat)) return SampleFormat{Encoding::float64, byteOrder, signType};
  return std::nullopt;
}

Likeness probeRaw(const FileHead&) { return Likeness::byName; }

LoadResult readRaw(File& file, const RawLayout& layout, int64_t mostFrames, CWave& wave) {
  if (layout.fileOffset > file.size()) {
    return LoadResult::failure("The file offset lies behind the end of the file.");
  }
  // Whoever tries one layout after another reads the same open file again.
  if (const auto error = file.seek(0)) return LoadResult::failure(error.message());
  InputStream in(file);
  in.seek(layout.fileOffset);
  const int frameBytes = bytesPerSample(layout.sample.encoding) * layout.channels;
  if (frameBytes < 1) return LoadResult::failure("Raw files have at least one channel of whole bytes.");
  const auto frames = static_cast<int64_t>(in.remaining() / static_cast<uint64_t>(frameBytes));
  return readPlainSamples(
      in, {layout.sampleRate, layout.channels, layout.sample, std::min(frames, mostFrames)}, wave);
}

LoadResult loadRaw(FileSystem& files, const std::string& path, const RawLayout& layout, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  LoadResult result = readRaw(*file, layout, std::numeric_limits<int64_t>::max(), wave);
  wave.setFileName(path);
  return result;
}

SaveResult saveRaw(FileSystem& files, const std::string& path, const CWave& wave,
                   const SaveOptions& options) {
  const bool isFloat = wave.formatTag() == kFormatFloat && wave.bitsPerSample() >= 32;
  const auto sample = rawSampleFormat(wave.bitsPerSample(), ByteOrder::little,
                                      isFloat ? RawSign::isFloat : RawSign::isSigned);
  if (!sample) return SaveResult::failure("No raw file can hold samples of this width.");
  return SaveResult::from(writeAtomically(files, path, options.sync, [&](OutputStream& out) {
    return encodeSamples(out, *sample, wave.samples(), wave.frames(), wave.channels(), wave.progress) !=
           CodecResult::cancelled;
  }));
}

std::vector<std::string> lossesOfRaw(const CWave& wave) {
  std::vector<std::string> lost = annotationLosses(wave, {});
  lost.push_back("the sample rate, the number of channels and the width of the samples");
  return lost;
}

}  // namespace plumetta
