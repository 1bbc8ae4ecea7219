// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/playback_engine.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

// What is not a number is silence: plug-ins and meters would never get rid of it.
PLUMETTA_WIDE_VECTORS void limit(float* samples, int frames) {
  for (int i = 0; i < frames; ++i) {
    const float sound = samples[i] == samples[i] ? samples[i] : 0.0f;
    samples[i] = std::min(std::max(sound, -kOutputCeiling), kOutputCeiling);
  }
}

PLUMETTA_WIDE_VECTORS float peakOf(const float* samples, int frames) {
  float peak = 0.0f;
  for (int i = 0; i < frames; ++i) peak = std::max(peak, std::fabs(samples[i]));
  return peak;
}

PLUMETTA_WIDE_VECTORS void scale(float* samples, int frames, float factor) {
  for (int i = 0; i < frames; ++i) samples[i] *= factor;
}

// The meters may be lowering it at the same time.
void raise(std::atomic<float>& peak, float to) {
  float present = peak.load(kRelaxed);
  while (to > present && !peak.compare_exchange_weak(present, to, kRelaxed)) {
  }
}

// Where playing turns back or ends: `beyond` is the first position behind the last frame.
struct Bounds {
  bool apply;
  double first, last, beyond;
};

Bounds boundsOf(SelectionEnds selection, int32_t length, bool loop, bool wholeFile) {
  int64_t lo = std::max(std::min(selection.start, selection.end), 0);
  int64_t hi = std::max(std::max(selection.start, selection.end), 0);
  if (loop && !wholeFile && lo == hi) {
    lo = 0;
    hi = std::max(length - 1, 0);
  }
  return {!wholeFile && lo != hi, static_cast<double>(lo), static_cast<double>(hi),
          static_cast<double>(hi + 1)};
}

}  // namespace

// The callback's stay among what the UI thread may take away.
class PlaybackEngine::Use {
 public:
  explicit Use(Turn& turn) : turn_(turn) { ++turn_; }
  ~Use() { ++turn_; }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

 private:
  Turn& turn_;
};

PlaybackEngine::PlaybackEngine(AudioLock& lock, PlaybackControls& controls, int mostFrames)
    : lock_(lock),
      controls_(controls),
      mostFrames_(mostFrames),
      frameAt_(static_cast<size_t>(mostFrames)),
      gains_(static_cast<size_t>(mostFrames)) {
  abandonCallback();
}

void PlaybackEngine::abandonCallback() { turn_ = turns_.emplace_back(std::make_unique<Turn>(0)).get(); }

// A callback that begins after the exchange sees the new pointer; one that had begun before is waited for,
// but not for ever: one that is still in the rack then has got nothing of the old pointers but the rack
// itself.
void PlaybackEngine::waitForCallback() const {
  const Turn& now = *turn_;
  const unsigned turn = now;
  constexpr std::chrono::seconds kPatience{3};
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (turn % 2 == 1 && now == turn && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void PlaybackEngine::setRack(BlockProcessor* rack) {
  rack_ = rack;
  waitForCallback();
}

void PlaybackEngine::setWidget(int index, AudioWidget* widget) {
  widgets_[static_cast<size_t>(index)] = widget;
  waitForCallback();
}

bool PlaybackEngine::callback(void* engine, float** channels, int* frames, int* channelCount) noexcept {
  static_cast<PlaybackEngine*>(engine)->fill(channels, frames, channelCount);
  return true;
}

void PlaybackEngine::fill(float** channels, int* frames, int* channelCount) noexcept {
  Turn& turn = *turn_;
  const Use use(turn);
  *frames = std::clamp(*frames, 0, mostFrames_);
  *channelCount = std::clamp(*channelCount, 0, kMaxOutputChannels);
  heardFrames_ = 0;
  for (int c = 0; c < *channelCount; ++c) {
    channels[c] = buffers_[static_cast<size_t>(c)];
    std::fill_n(channels[c], *frames, 0.0f);
  }
  if (controls_.source.load(kRelaxed) == nullptr) return;
  if (controls_.playing.load(kRelaxed)) playBlock(*frames, *channelCount);
  runRack(channels, *channelCount, *frames);
  if (&turn != turn_) return silence(channels, *channelCount, *frames);
  showBlock(channels, *frames, *channelCount);
  applyVolume(*frames, *channelCount);
  wind(*frames);
}

void PlaybackEngine::playBlock(int frames, int channelCount) noexcept {
  double position = 0;
  uint32_t rate = 0;
  {
    const AudioLockHeld held(lock_);
    PlaybackSource* source = controls_.source.load(kRelaxed);
    if (source == nullptr || !controls_.playing.load(kRelaxed)) return;
    const CWave& wave = source->wave();
    PlaybackPlace& place = source->playback();
    position = planFrames(*source, place, frames);
    rate = wave.sampleRate();
    for (int c = 0; c < channelCount; ++c) {
      const int channel = sourceChannel(wave, c);
      if (channel >= 0) readChannel(wave, channel, frames, buffers_[static_cast<size_t>(c)]);
    }
    place.position.store(position, kRelaxed);
    place.playCursor.store(static_cast<int32_t>(std::min(position, double{kMaxFrames})), kRelaxed);
    if (!controls_.playing.load(kRelaxed)) place.redraw.store(true, kRelaxed);
  }
  const double outputRate = controls_.outputRate.load(kRelaxed);
  if (BlockProcessor* rack = rack_) rack->setPosition(rate > 0 ? position / rate * outputRate : 0);
  if (AudioWidget* widget = widgets_[kPositionWidget]) widget->setPosition(position, rate);
}

// Every channel walks the same frames, so they are laid down once. Returns the position after the block; ends
// playing where the file or a selection that isn't looped ends. A selection's last frame then sounds on to
// the end of the block.
double PlaybackEngine::planFrames(const PlaybackSource& source, const PlaybackPlace& place,
                                  int frames) noexcept {
  const CWave& wave = source.wave();
  const bool loop = controls_.loop.load(kRelaxed);
  const Bounds bounds =
      boundsOf(place.selection.load(kRelaxed), wave.frames(), loop, controls_.wholeFile.load(kRelaxed));
  const double outputRate = controls_.outputRate.load(kRelaxed);
  const bool convert = controls_.resampling.load(kRelaxed) && wave.sampleRate() != outputRate;
  const double step = convert ? wave.sampleRate() / outputRate : 1.0;
  const double length = wave.frames();
  double position = place.position.load(kRelaxed);
  int heard = frames;
  bool ended = false;
  for (int i = 0; i < frames; ++i) {
    const bool inside = position < length;
    frameAt_[static_cast<size_t>(i)] = inside ? static_cast<int32_t>(position) : -1;
    if (!inside && !ended) heard = i;
    ended |= !inside;
    position += step;
    if (!bounds.apply || position < bounds.beyond) continue;
    if (!loop && !ended) heard = i + 1;
    ended |= !loop;
    position = loop ? bounds.first : bounds.last;
  }
  heardFrames_ = heard;
  if (ended) controls_.playing.store(false, kRelaxed);
  return position;
}

// -1 for silence.
int PlaybackEngine::sourceChannel(const CWave& wave, int outputChannel) const noexcept {
  int channel = controls_.routing[static_cast<size_t>(outputChannel)].load(kRelaxed);
  // A mono file sounds on both sides.
  if (wave.channels() == 1 && channel == 1) channel = 0;
  return wave.isActive(channel) ? channel : -1;
}

void PlaybackEngine::readChannel(const CWave& wave, int sourceChannel, int frames, float* out) noexcept {
  const float* samples = wave.samples() + sourceChannel;
  const auto stride = static_cast<size_t>(wave.channels());
  for (int i = 0; i < frames; ++i) {
    const int32_t frame = frameAt_[static_cast<size_t>(i)];
    out[i] = frame < 0 ? 0.0f : samples[static_cast<size_t>(frame) * stride];
  }
  if (controls_.automation.load(kRelaxed) && wave.envelope.active()) {
    wave.envelope.gainsAt(frameAt_.data(), frames, sourceChannel, gains_.data());
    for (int i = 0; i < frames; ++i) out[i] *= gains_[static_cast<size_t>(i)];
  }
  limit(out, frames);
}

void PlaybackEngine::runRack(float** channels, int channelCount, int frames) noexcept {
  BlockProcessor* rack = rack_;
  if (rack == nullptr || !controls_.rackEnabled.load(kRelaxed)) return;
  rack->setPlaying(controls_.playing.load(kRelaxed));
  rack->process(channels, channelCount, frames);
}

// Left behind in the rack: widgets, volume and place are the next callback's by now, and so are the buffers
// but for those that are being filled.
void PlaybackEngine::silence(float** channels, int channelCount, int frames) noexcept {
  for (int c = 0; c < channelCount; ++c) std::fill_n(channels[c], frames, 0.0f);
}

void PlaybackEngine::showBlock(float** channels, int frames, int channelCount) noexcept {
  for (const auto& place : widgets_) {
    if (AudioWidget* widget = place) widget->feed(channels, frames, channelCount);
  }
  for (int c = 0; c < channelCount; ++c) {
    raise(controls_.outputPeaks[static_cast<size_t>(c)], peakOf(channels[c], frames));
  }
}

// The meters have seen the signal as it is without the volume.
void PlaybackEngine::applyVolume(int frames, int channelCount) noexcept {
  const float volume = controls_.generalVolume.load(kRelaxed);
  for (int c = 0; c < channelCount; ++c) scale(buffers_[static_cast<size_t>(c)], frames, volume);
}

// On top of the block that has just been played, so forward is faster than rewind.
void PlaybackEngine::wind(int frames) noexcept {
  WindMode mode = controls_.windMode.load(kRelaxed);
  if (mode == WindMode::none) return;
  const AudioLockHeld held(lock_);
  PlaybackSource* source = controls_.source.load(kRelaxed);
  if (source == nullptr) return;
  PlaybackPlace& place = source->playback();
  const int64_t length = source->wave().frames();
  const int64_t distance = int64_t{controls_.windSpeed.load(kRelaxed)} * frames;
  int64_t target = static_cast<int64_t>(place.position.load(kRelaxed));
  target += mode == WindMode::rewind ? -distance : distance;
  const bool reachedEnd = mode == WindMode::rewind ? target < 0 : target >= length;
  if (reachedEnd) controls_.windMode.compare_exchange_strong(mode, WindMode::none);
  target = std::max<int64_t>(std::min(target, length - 1), 0);
  const auto frame = static_cast<int32_t>(target);
  place.position.store(frame, kRelaxed);
  place.cursor.store(frame, kRelaxed);
  place.playCursor.store(frame, kRelaxed);
  place.selection.store({frame, frame}, kRelaxed);
  place.wound.store(true, std::memory_order_release);
}

}  // namespace plumetta
