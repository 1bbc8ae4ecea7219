// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <vector>

#include "audio/playback_controls.h"
#include "core/audio_lock.h"
#include "core/audio_widget.h"
#include "core/block_processor.h"

namespace plumetta {

// Makes the sound of one device buffer after another out of the document that is played: routing, volume
// envelope, rate conversion, selection and loop, plug-ins, meters, general volume, winding. It holds no
// audio; the position lives in the document, the buffers belong to whoever pulls.
class PlaybackEngine {
 public:
  static constexpr int kWidgets = 5;
  static constexpr int kPositionWidget = 4;  // the one that is told the position

  // `mostFrames` is the longest block.
  PlaybackEngine(AudioLock& lock, PlaybackControls& controls, int mostFrames);
  PlaybackEngine(const PlaybackEngine&) = delete;
  PlaybackEngine& operator=(const PlaybackEngine&) = delete;

  // UI thread, while nobody pulls: `mostFrames` floats a channel, which must outlive the pulling.
  void setBuffers(const std::array<float*, kMaxOutputChannels>& buffers) { buffers_ = buffers; }
  // UI thread, also while playing; null for none. What stood there before is not used any more on return.
  void setRack(BlockProcessor* rack);
  BlockProcessor* rack() const noexcept { return rack_; }
  void setWidget(int index, AudioWidget* widget);

  // UI thread: the callback that runs now will never end, or not in time; nobody waits for it any more.
  // Should it end after all, it still finds the engine, which has to stay.
  void abandonCallback();

  // What output drivers are given, with the engine as its context. Always true.
  static bool callback(void* engine, float** channels, int* frames, int* channelCount) noexcept;
  // One block: points `channels` at *channelCount buffers of *frames floats; larger numbers than there is
  // room for are lowered. Audio thread; never allocates, never waits but for the audio lock.
  void fill(float** channels, int* frames, int* channelCount) noexcept;

  // How many frames of the last block came from the source before playing ended by itself. Audio thread.
  int heardFrames() const noexcept { return heardFrames_; }

 private:
  class Use;

  void playBlock(int frames, int channelCount) noexcept;
  double planFrames(const PlaybackSource& source, const PlaybackPlace& place, int frames) noexcept;
  int sourceChannel(const CWave& wave, int outputChannel) const noexcept;
  void readChannel(const CWave& wave, int sourceChannel, int frames, float* out) noexcept;
  void runRack(float** channels, int channelCount, int frames) noexcept;
  static void silence(float** channels, int channelCount, int frames) noexcept;
  void showBlock(float** channels, int frames, int channelCount) noexcept;
  void applyVolume(int frames, int channelCount) noexcept;
  void wind(int frames) noexcept;
  void waitForCallback() const;

  AudioLock& lock_;
  PlaybackControls& controls_;
  const int mostFrames_;
  std::array<float*, kMaxOutputChannels> buffers_{};
  std::atomic<BlockProcessor*> rack_{nullptr};
  std::array<std::atomic<AudioWidget*>, kWidgets> widgets_{};
  using Turn = std::atomic<unsigned>;  // odd while the callback runs
  std::vector<std::unique_ptr<Turn>> turns_;
  std::atomic<Turn*> turn_{nullptr};  // the last of them; the others were left behind

  // Of the block that is being made; audio thread.
  std::vector<int32_t> frameAt_;  // the source frame of each output frame, -1 beyond the file
  std::vector<float> gains_;
  int heardFrames_ = 0;
};

}  // namespace plumetta
