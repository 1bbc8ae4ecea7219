// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/moving_average.h"

#include <algorithm>
#include <vector>

namespace plumetta {
namespace {

constexpr int64_t kChunkFrames = 16384;
constexpr int kMostChannels = 15;  // kept: a 16th channel has never been supported here

// The sum of the window of one channel. A running sum in double precision stays exact to far below a float's
// last bit, however long the file.
struct RunningMean {
  float* samples;
  int64_t stride;
  int64_t frames;
  int64_t length;
  double sum = 0.0;

  float at(int64_t frame) const { return frame < frames ? samples[frame * stride] : 0.0f; }

  void start() {
    for (int64_t k = 0; k < std::min(length, frames); ++k) sum += at(k);
  }

  // Writes the means of the frames from `first` to before `end`; the window moves on as it is written over.
  void run(int64_t first, int64_t end) {
    for (int64_t n = first; n < end; ++n) {
      const double leaving = at(n);
      samples[n * stride] = static_cast<float>(sum / static_cast<double>(length));
      sum += at(n + length) - leaving;
    }
  }
};

}  // namespace

bool movingAverage(CWave& wave, int32_t length) {
  if (length < 1 || wave.channels() > kMostChannels || wave.frames() < 1) return false;
  std::vector<RunningMean> means;
  for (int c = 0; c < wave.channels(); ++c) {
    if (wave.isActive(c)) means.push_back({wave.samples() + c, wave.channels(), wave.frames(), length});
  }
  for (RunningMean& mean : means) mean.start();
  for (int64_t frame = 0; frame < wave.frames(); frame += kChunkFrames) {
    const int64_t end = std::min<int64_t>(frame + kChunkFrames, wave.frames());
    for (RunningMean& mean : means) mean.run(frame, end);
    if (!wave.nextTurn(static_cast<double>(end) / wave.frames())) return false;
  }
  return true;
}

}  // namespace plumetta
