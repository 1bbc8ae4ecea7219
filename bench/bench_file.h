// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <filesystem>
#include <memory>
#include <string>

#include "core/wave.h"
#include "formats/wav_writer.h"

namespace plumetta {

inline constexpr int kBenchRate = 44100;
inline constexpr int32_t kBenchFrames = 600 * kBenchRate;  // ten minutes

// Ten minutes of stereo: two detuned tones under a slow swell.
inline std::unique_ptr<CWave> benchWave() {
  auto wave = std::make_unique<CWave>();
  wave->create(kBenchRate, 2, 16, kBenchFrames, kFormatPcm);
  for (int32_t f = 0; f < kBenchFrames; ++f) {
    const float swell = 0.4f + 0.3f * static_cast<float>((f / 4096) % 100) / 100.0f;
    wave->setSample(f, 0, swell * std::sin(0.031f * static_cast<float>(f % 100000)));
    wave->setSample(f, 1, swell * std::sin(0.047f * static_cast<float>(f % 100000)));
  }
  return wave;
}

// The same as a 16-bit file, written once a run.
inline const std::string& benchFile() {
  static const std::string path = [] {
    const auto file = (std::filesystem::temp_directory_path() / "plumetta-bench.wav").string();
    saveWav(nativeFileSystem(), file, *benchWave(), SyncToDisk::no);
    return file;
  }();
  return path;
}

}  // namespace plumetta
