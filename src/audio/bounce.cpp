// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/bounce.h"

#include <algorithm>
#include <vector>

#include "audio/playback_engine.h"
#include "audio/transport.h"

namespace plumetta {
namespace {

void obey(PlaybackControls& controls, const BounceOptions& options) {
  controls.outputRate = options.outputRate;
  controls.loop = options.loop;
  controls.generalVolume = options.generalVolume;
  controls.automation = options.automation;
  controls.resampling = options.resampling;
  controls.rackEnabled = options.rack != nullptr;
  for (size_t k = 0; k < options.routing.size(); ++k) controls.routing[k] = options.routing[k];
}

// Takes over what the callback leaves, block by block; its room grows ahead of it.
class Recorder {
 public:
  explicit Recorder(CWave& target) : target_(target) {}

  // False when there is no room for more.
  bool append(const float* const* channels, int frames) {
    const int count = target_.channels();
    const int64_t end = int64_t{written_} + frames;
    if (end > kMaxFrames || (end > room_ && !grow(end))) return false;
    float* out = target_.samples() + static_cast<size_t>(written_) * static_cast<size_t>(count);
    for (int i = 0; i < frames; ++i) {
      for (int c = 0; c < count; ++c) *out++ = channels[c][i];
    }
    written_ = static_cast<int32_t>(end);
    return true;
  }

  int32_t written() const { return written_; }

  void finish() {
    target_.setLayout(target_.channels(), written_);
    target_.resize(written_, target_.channels());  // gives memory back, which can't lose samples
  }

 private:
  bool grow(int64_t frames) {
    constexpr int64_t kLeastRoom = 65536;
    room_ = std::min<int64_t>(std::max({frames, 2 * room_, kLeastRoom}), kMaxFrames);
    return target_.resize(room_, target_.channels());
  }

  CWave& target_;
  int64_t room_ = 0;
  int32_t written_ = 0;
};

}  // namespace

BounceResult bounce(PlaybackSource& source, const BounceOptions& options, CWave& target,
                    const WaveProgress& progress) {
  constexpr int kFloatBits = 32;
  const auto rate = static_cast<uint32_t>(options.outputRate);
  if (!target.create(rate, options.channels, kFloatBits, 0, kFormatFloat)) return BounceResult::tooLong;
  AudioLock lock;
  Transport transport(lock, [] { return true; });
  PlaybackControls& controls = transport.controls();
  obey(controls, options);
  PlaybackEngine engine(lock, controls, options.bufferFrames);
  std::vector<float> room(static_cast<size_t>(options.bufferFrames) * kMaxOutputChannels);
  std::array<float*, kMaxOutputChannels> buffers{};
  for (size_t c = 0; c < buffers.size(); ++c) {
    buffers[c] = room.data() + c * static_cast<size_t>(options.bufferFrames);
  }
  engine.setBuffers(buffers);
  if (options.rack != nullptr) options.rack->setSampleRate(options.outputRate);
  engine.setRack(options.rack);
  options.wholeFile ? transport.playAll(&source) : transport.play(&source);

  Recorder recorder(target);
  while (options.frames ? recorder.written() < *options.frames : controls.playing.load()) {
    std::array<float*, kMaxOutputChannels> channels{};
    int frames = options.bufferFrames;
    int channelCount = options.channels;
    PlaybackEngine::callback(&engine, channels.data(), &frames, &channelCount);
    const int kept =
        options.frames ? std::min(frames, *options.frames - recorder.written()) : engine.heardFrames();
    if (!recorder.append(channels.data(), kept)) return BounceResult::tooLong;
    const double total = options.frames ? *options.frames : std::max(source.wave().frames(), 1);
    const double come = options.frames ? recorder.written() : source.playback().position.load();
    if (!progress.report(static_cast<float>(std::min(come / total, 1.0)))) return BounceResult::cancelled;
  }
  recorder.finish();
  return BounceResult::done;
}

}  // namespace plumetta
