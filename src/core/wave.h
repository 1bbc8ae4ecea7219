// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "core/audio_lock.h"
#include "core/chunk_list.h"
#include "core/loop_points.h"
#include "core/marker_list.h"
#include "core/volume_envelope.h"
#include "core/wave_progress.h"
#include "platform/block_memory.h"

namespace plumetta {

inline constexpr int kMaxChannels = 16;
inline constexpr int32_t kMaxFrames = std::numeric_limits<int32_t>::max();
// The name of a buffer that has not been loaded or saved yet; no such file is ever written.
inline constexpr const char* kUnnamedWave = "~tmp.wav";

// WAVE format codes.
enum FormatTag : uint16_t {
  kFormatPcm = 1,
  kFormatAdpcm = 2,
  kFormatFloat = 3,
  kFormatALaw = 6,
  kFormatMuLaw = 7,
  kFormatMpegLayer3 = 85,
  kFormatExtensible = 65534,
};

enum class ActiveOperation { all = 0, solo = 1, off = 2, on = 3, toggle = 4 };

// What the mix-down to mono takes into its one channel, beside a channel's own index.
inline constexpr int kMixAllChannels = -1;
inline constexpr int kMixActiveChannels = -2;

// The whole content of one audio document: every sample of every channel in memory, the channels that editing
// acts on, and the annotations that travel with the audio. Samples are 32-bit floats, interleaved by frame
// (channel c of frame f at f × channels + c), full scale ±1.0, whatever the file's format. Bits and format
// tag say how the audio was read and will be written. Operations report failure by their result, show nothing
// and leave the buffer usable. No lock inside: callers keep threads apart.
class CWave {
 public:
  // A tenth of a second of silence: mono, 16 bits, 44100 Hz.
  CWave();
  CWave(const CWave&) = delete;
  CWave& operator=(const CWave&) = delete;

  uint16_t formatTag() const { return formatTag_; }
  void setFormatTag(uint16_t tag) { formatTag_ = tag; }
  int channels() const { return channels_; }
  uint32_t sampleRate() const { return sampleRate_; }
  void setSampleRate(uint32_t rate) { sampleRate_ = rate; }
  int bitsPerSample() const { return bits_; }
  void setBitsPerSample(int bits) { bits_ = static_cast<uint16_t>(bits); }
  int32_t frames() const { return frames_; }
  const std::string& fileName() const { return fileName_; }
  void setFileName(std::string name) { fileName_ = std::move(name); }

  // Unchecked: frame and channel must lie inside the buffer.
  float sample(int32_t frame, int channel) const { return samples()[index(frame, channel)]; }
  void setSample(int32_t frame, int channel, float value) { samples()[index(frame, channel)] = value; }
  // frames × channels interleaved floats.
  float* samples() { return static_cast<float*>(block_.data()); }
  const float* samples() const { return static_cast<const float*>(block_.data()); }
  size_t sampleCount() const { return static_cast<size_t>(frames_) * static_cast<size_t>(channels_); }

  // Makes room for frames × channels samples and keeps the leading ones; the fields stay as they are, callers
  // set them through `setLayout`. False, with the old block kept, when there is no memory.
  bool resize(int64_t frames, int channels);
  // The channel and frame count that a successful resize made room for.
  void setLayout(int channels, int32_t frames);
  // A fresh silent buffer of this format, unnamed and without annotations; false for values no file can have.
  bool create(uint32_t sampleRate, int channels, int bits, int64_t frames, uint16_t formatTag);
  // Exchanges the sample block and the frame and channel counts; costs nothing.
  void exchangeBlock(BlockMemory& block, int& channels, int32_t& frames);

  // A whole copy: samples, format, loops, markers and envelope; unnamed.
  bool copyFrom(const CWave& source);
  // Copies the frames between the two, both included, of the active channels into `target`, with the loops
  // and markers that lie inside. False outside the buffer or with no active channel.
  bool copyRangeTo(CWave& target, int32_t from, int32_t to) const;
  // Fills and returns the range marker list with the markers between the two frames, relative to the lower.
  const CMarkerList& copyMarkersOfRange(int32_t from, int32_t to);
  // Whether `insertBuffer` would take this source here, memory apart.
  bool canInsert(const CWave& source, int32_t position) const;
  // Puts the source's frames before `position`; a mono source goes to every channel. Annotations follow.
  bool insertBuffer(const CWave& source, int32_t position);
  // Puts silent frames before `position`, which may be the frame count. Annotations follow.
  bool insertSilence(int32_t position, int32_t length);
  // Removes the frames between the two, both included. Annotations follow.
  bool deleteRange(int32_t from, int32_t to);
  // Keeps the frames between the two alone.
  bool trim(int32_t from, int32_t to);
  bool removeChannel(int channel);
  // One channel out of all of them (kMixAllChannels), of the active ones (kMixActiveChannels), or channel
  // `mode` alone. The envelope goes.
  bool mixDownToMono(int mode);
  bool monoToStereo();

  bool isActive(int channel) const;
  bool allActive() const;
  int activeCount() const;
  void setActive(ActiveOperation operation, int channel);

  // Odd channels, odd frames, 8 or 24 bits: the data chunk of a file would have an odd size.
  bool needsEvenFrame() const;
  // Adds the silent frame that such a file got when it was saved; the envelope's end follows.
  bool appendEvenFrame();

  CLoopPoints loops;
  CMarkerList markers;
  CVolumeEnvelope envelope;
  CChunkList extraChunks;
  WaveProgress progress;

  // Work on sample values says so between pieces of about a tenth of a millisecond; whoever set `lock` for
  // the time of that work lets playback in there.
  static constexpr size_t kSamplesPerTurn = size_t{1} << 17;
  void nextTurn() {
    if (lock != nullptr) lock->nextTurn();
  }
  // The same for long work: also tells how far it has come. False when it shall stop.
  bool nextTurn(double fractionDone) {
    const auto report = [&] { return progress.report(static_cast<float>(fractionDone)); };
    return lock != nullptr ? lock->outside(report) : report();
  }
  AudioLockHeld* lock = nullptr;

 private:
  size_t index(int32_t frame, int channel) const {
    return static_cast<size_t>(frame) * static_cast<size_t>(channels_) + static_cast<size_t>(channel);
  }
  bool inside(int32_t frame) const { return frame >= 0 && frame < frames_; }
  // Opens a gap of `length` frames before `position`; what it holds is undefined.
  bool openGap(int32_t position, int32_t length);
  void followInsert(int32_t position, int32_t length);

  uint16_t formatTag_ = kFormatPcm;
  uint16_t channels_ = 1;
  uint32_t sampleRate_ = 44100;
  uint16_t bits_ = 16;
  int32_t frames_ = 0;
  std::string fileName_ = kUnnamedWave;
  std::array<bool, kMaxChannels> active_;
  BlockMemory block_;
  std::unique_ptr<CMarkerList> rangeMarkers_;
};

}  // namespace plumetta
