// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/frame_sink.h"

#include <algorithm>

namespace plumetta {
namespace {

constexpr uint32_t kFallbackRate = 44100;
// Compressed audio seldom has more frames a byte than this; silence, which does, makes its room as it comes.
constexpr uint64_t kLikelyFramesPerByte = 256;
// Bytes of samples that most files give for each of their own: so many are worth having ready.
constexpr uint64_t kLikelyExpansion = 64;
constexpr int64_t kFirstFrames = int64_t{1} << 16;

}  // namespace

LoadResult FrameSink::begin(uint32_t sampleRate, int channels, int bits, uint16_t formatTag,
                            int64_t claimedFrames, uint64_t fileBytes) {
  if (channels < 1 || channels > kMaxChannels) {
    return LoadResult::failure("The file has " + std::to_string(channels) +
                               " channels: a document holds 1 to 16.");
  }
  const auto likely = static_cast<int64_t>(std::min<uint64_t>(fileBytes, kMaxFrames) * kLikelyFramesPerByte);
  channels_ = channels;
  frames_ = 0;
  capacity_ = std::min({claimedFrames, likely, int64_t{kMaxFrames}});
  LoadResult result;
  if (sampleRate == 0) {
    sampleRate = kFallbackRate;
    result.warnings.push_back("The file names no sample rate: 44100 Hz is assumed.");
  }
  if (!wave_.create(sampleRate, channels, bits, capacity_, formatTag)) return LoadResult::outOfMemory();
  const uint64_t expected = std::min<uint64_t>(fileBytes, kMaxFrames) * kLikelyExpansion;
  pages_.emplace(wave_.samples(), std::min<uint64_t>(wave_.sampleCount() * sizeof(float), expected));
  return result;
}

float* FrameSink::room(int64_t frames) {
  const int64_t needed = frames_ + frames;
  if (needed > capacity_) {
    if (needed > kMaxFrames) {
      refusal_ = LoadResult::tooLong();
      return nullptr;
    }
    const int64_t doubled = std::clamp<int64_t>(2 * capacity_, kFirstFrames, kMaxFrames);
    pages_.reset();  // the block may move
    capacity_ = std::max(needed, doubled);
    if (!wave_.resize(capacity_, channels_)) {
      refusal_ = LoadResult::outOfMemory();
      return nullptr;
    }
  }
  return wave_.samples() + frames_ * channels_;
}

void FrameSink::end() {
  pages_.reset();
  if (frames_ < capacity_) wave_.resize(frames_, channels_);
  wave_.setLayout(channels_, static_cast<int32_t>(frames_));
}

}  // namespace plumetta
