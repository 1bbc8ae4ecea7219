// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/vox_file.h"

#include <algorithm>
#include <cmath>

#include "formats/dialogic_adpcm.h"
#include "formats/losses.h"
#include "formats/plain_samples.h"

namespace plumetta {
namespace {

constexpr uint32_t kVoxRate = 8000;
constexpr int32_t kReportFrames = 4096;

// 12 bits at the top of a 16-bit scale, as the decoder has them.
uint8_t codeOf(DialogicAdpcm& adpcm, float sample) {
  const float number = sample == sample ? std::clamp(sample, -1.0f, 1.0f) : 0.0f;
  return adpcm.encode(static_cast<int>(std::lround(number * 32767.0 / 16)));
}

// False when it shall stop.
bool writeCodes(OutputStream& out, const CWave& wave) {
  DialogicAdpcm adpcm;
  const float* samples = wave.samples();
  for (int32_t frame = 0; frame < wave.frames(); frame += 2) {
    const uint8_t high = codeOf(adpcm, samples[frame]);
    const uint8_t low = codeOf(adpcm, frame + 1 < wave.frames() ? samples[frame + 1] : 0.0f);
    out.writeLittle(static_cast<uint8_t>(high << 4 | low));
    if (frame % kReportFrames == 0 && !wave.progress.report(static_cast<float>(frame) / wave.frames())) {
      return false;
    }
    if (frame + 1 == wave.frames()) break;
  }
  return true;
}

}  // namespace

Likeness probeVox(const FileHead&) { return Likeness::byName; }

LoadResult loadVox(FileSystem& files, const std::string& path, CWave& wave) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  InputStream in(*file);
  const SampleFormat adpcm{Encoding::adpcm4, ByteOrder::little, SignType::isSigned};
  const auto frames = static_cast<int64_t>(2 * in.size());
  LoadResult result = readPlainSamples(in, {kVoxRate, 1, adpcm, frames}, wave);
  wave.setFileName(path);
  return result;
}

SaveResult saveVox(FileSystem& files, const std::string& path, const CWave& wave,
                   const SaveOptions& options) {
  if (wave.channels() != 1) return SaveResult::failure("A VOX file has one channel.");
  return SaveResult::from(
      writeAtomically(files, path, options.sync, [&](OutputStream& out) { return writeCodes(out, wave); }));
}

std::vector<std::string> lossesOfVox(const CWave& wave) {
  std::vector<std::string> lost = annotationLosses(wave, {});
  lost.push_back("precision: 4 bits a sample are kept");
  if (wave.sampleRate() != kVoxRate) {
    lost.push_back("the sample rate: it will be read as " + std::to_string(kVoxRate) + " Hz");
  }
  return lost;
}

}  // namespace plumetta
