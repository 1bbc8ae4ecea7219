// SPDX-License-Identifier: GPL-3.0-or-later
// The chain over the samples of a document.
#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <system_error>

#include "core/audio_lock.h"
#include "vst/offline_worker.h"
#include "vst/rack.h"

namespace plumetta {
namespace {

constexpr int kBlock = Rack::kOfflineBlockFrames;

struct FrameSpan {
  int64_t first, length;
};

FrameSpan framesToProcess(const CWave& wave, int64_t start, int64_t end) {
  if (start == end) return {0, wave.frames()};
  const int64_t first = std::min(start, end);
  const int64_t beyond = std::min<int64_t>(std::max(start, end), wave.frames());
  return {first, std::max<int64_t>(beyond - first, 0)};
}

// A stretch of samples on its way through the chain.
struct Stretch {
  std::vector<float> samples;
  int64_t first = 0, frames = 0;

  int64_t end() const { return first + frames; }
};

// All that a plug-in may reach. Outlives whoever made it when a plug-in never comes back.
struct Desk {
  PinBuffers inputs{Rack::kBufferFrames}, outputs{Rack::kBufferFrames};
  std::array<bool, kMaxChannels> channelFlags;
  int channels;
  // One is in the plug-ins while the one before is put back and the next is fetched.
  std::array<Stretch, 2> stretches;
};

bool passThrough(Rack& rack, Desk& desk, Stretch& stretch) {
  for (int64_t done = 0; done < stretch.frames; done += kBlock) {
    const auto frames = static_cast<int>(std::min<int64_t>(kBlock, stretch.frames - done));
    float* samples = stretch.samples.data() + done * desk.channels;
    if (!rack.processInterleaved(desk.inputs, desk.outputs, samples, frames, desk.channels,
                                 desk.channelFlags)) {
      return false;
    }
  }
  return true;
}

// How many blocks go through the chain in one stretch: enough of them that handing them over costs nothing,
// few enough that progress and Cancel stay alive.
class StretchLength {
 public:
  explicit StretchLength(int channels) : most_(kMostSamples / (channels * kBlock)) {}

  int64_t frames() const { return int64_t{blocks_} * kBlock; }
  void took(std::chrono::steady_clock::duration time) {
    using std::chrono::milliseconds;
    if (time < milliseconds(20)) blocks_ = std::min(2 * blocks_, most_);
    if (time > milliseconds(80)) blocks_ = std::max(blocks_ / 2, 1);
  }

 private:
  static constexpr int kMostSamples = 1 << 16;  // stay in a core's own cache on the way there and back

  int blocks_ = 1;
  const int most_;
};

// One run of the chain over a buffer. Plug-ins work on a thread that can be left behind, and on copies.
class ChainPass {
 public:
  ChainPass(Rack& rack, CWave& wave, AudioLock& lock, std::function<bool()> patient)
      : rack_(rack), wave_(wave), lock_(lock), patient_(std::move(patient)), size_(wave.channels()) {
    desk_->channels = wave.channels();
    desk_->channelFlags.fill(true);
  }

  ChainResult run(FrameSpan span, const WaveProgress& progress) {
    const int64_t end = span.first + span.length, fullBlocks = span.length / kBlock;
    Stretch *now = &desk_->stretches[0], *next = &desk_->stretches[1];
    fetch(*now, span.first, end);
    begin(*now);
    for (int64_t told = 0;; std::swap(now, next)) {
      fetch(*next, now->end(), end);
      if (!finish()) return ChainResult::failed;
      if (next->frames > 0) begin(*next);
      putBack(*now);
      for (; told < (now->end() - span.first) / kBlock; ++told) {
        const float fraction = static_cast<float>(told) / static_cast<float>(fullBlocks);
        if (progress.report(fraction)) continue;
        return next->frames == 0 || finish() ? ChainResult::cancelled : ChainResult::failed;
      }
      if (next->frames == 0) return ChainResult::done;
    }
  }

 private:
  void fetch(Stretch& stretch, int64_t first, int64_t end) {
    stretch.first = first;
    stretch.frames = std::min(size_.frames(), end - first);
    const float* samples = wave_.samples() + first * wave_.channels();
    stretch.samples.assign(samples, samples + stretch.frames * wave_.channels());
  }

  void begin(Stretch& stretch) {
    begun_ = std::chrono::steady_clock::now();
    worker_.begin([rack = &rack_, desk = desk_, &stretch] { return passThrough(*rack, *desk, stretch); });
  }

  bool finish() {
    if (!worker_.finish(patient_)) return false;
    size_.took(std::chrono::steady_clock::now() - begun_);
    return true;
  }

  void putBack(const Stretch& stretch) {
    const AudioLockHeld held(lock_);
    std::copy(stretch.samples.begin(), stretch.samples.end(),
              wave_.samples() + stretch.first * wave_.channels());
  }

  Rack& rack_;
  CWave& wave_;
  AudioLock& lock_;
  const std::function<bool()> patient_;
  StretchLength size_;
  std::shared_ptr<Desk> desk_ = std::make_shared<Desk>();
  std::chrono::steady_clock::time_point begun_;
  OfflineWorker worker_;
};

// Keeps playing away from the plug-ins while it lives.
class OfflineUse {
 public:
  explicit OfflineUse(std::atomic<int>& uses) : uses_(uses) { ++uses_; }
  ~OfflineUse() { --uses_; }
  OfflineUse(const OfflineUse&) = delete;
  OfflineUse& operator=(const OfflineUse&) = delete;

 private:
  std::atomic<int>& uses_;
};

}  // namespace

ChainResult Rack::applyTo(CWave& wave, AudioLock& lock, int64_t start, int64_t end,
                          const WaveProgress& progress) {
  if (start < 0 || end < 0) return ChainResult::done;
  const std::lock_guard alone(offline_);
  const OfflineUse use(offlineUses_);
  offlineSlot_ = -1;
  const auto patient = [this] {
    host_.watchForHangs();
    return !host_.isGivenUp(offlineSlot_);
  };
  try {
    return ChainPass(*this, wave, lock, patient).run(framesToProcess(wave, start, end), progress);
  } catch (const std::bad_alloc&) {
    return ChainResult::failed;
  } catch (const std::system_error&) {  // no thread to be had
    return ChainResult::failed;
  }
}

}  // namespace plumetta
