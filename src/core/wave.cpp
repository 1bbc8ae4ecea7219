// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/wave.h"

#include <algorithm>
#include <cstring>

namespace plumetta {
namespace {

constexpr int32_t kDefaultFrames = 4410;

bool validBits(int bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 32 || bits == 64; }

size_t bytesOf(int64_t frames, int channels) {
  return static_cast<size_t>(frames) * static_cast<size_t>(channels) * sizeof(float);
}

// Copies the chosen channels of interleaved frames, packed in ascending order.
void packChannels(const float* source, int sourceChannels, const std::array<int, kMaxChannels>& chosen,
                  int chosenCount, int32_t frames, float* target) {
  for (int32_t frame = 0; frame < frames; ++frame) {
    for (int c = 0; c < chosenCount; ++c) target[c] = source[chosen[static_cast<size_t>(c)]];
    source += sourceChannels;
    target += chosenCount;
  }
}

}  // namespace

CWave::CWave() {
  active_.fill(true);
  if (block_.resizeZeroed(bytesOf(kDefaultFrames, 1))) frames_ = kDefaultFrames;
}

bool CWave::resize(int64_t frames, int channels) {
  if (frames < 1) {
    block_.release();
    return true;
  }
  if (frames > kMaxFrames) return false;
  return block_.resize(bytesOf(frames, channels));
}

void CWave::setLayout(int channels, int32_t frames) {
  channels_ = static_cast<uint16_t>(channels);
  frames_ = frames;
}

bool CWave::create(uint32_t sampleRate, int channels, int bits, int64_t frames, uint16_t formatTag) {
  if (channels < 1 || channels > kMaxChannels) return false;
  if (formatTag != kFormatPcm && formatTag != kFormatFloat) return false;
  if (!validBits(bits) || frames < 0 || frames > kMaxFrames) return false;
  if (!block_.resizeZeroed(bytesOf(frames, channels))) return false;
  fileName_ = kUnnamedWave;
  sampleRate_ = sampleRate;
  bits_ = static_cast<uint16_t>(bits);
  formatTag_ = formatTag;
  setLayout(channels, static_cast<int32_t>(frames));
  loops.clear();
  markers.clear();
  envelope.clear();
  return true;
}

void CWave::exchangeBlock(BlockMemory& block, int& channels, int32_t& frames) {
  block_.swap(block);
  const int ownChannels = channels_;
  const int32_t ownFrames = frames_;
  setLayout(channels, frames);
  channels = ownChannels;
  frames = ownFrames;
}

bool CWave::copyFrom(const CWave& source) {
  if (!resize(source.frames_, source.channels_)) return false;
  if (source.frames_ > 0) std::memcpy(samples(), source.samples(), source.sampleCount() * sizeof(float));
  setLayout(source.channels_, source.frames_);
  bits_ = source.bits_;
  sampleRate_ = source.sampleRate_;
  formatTag_ = source.formatTag_;
  fileName_ = kUnnamedWave;
  loops = source.loops;
  markers = source.markers;
  envelope.copyFrom(source.envelope);
  return true;
}

bool CWave::copyRangeTo(CWave& target, int32_t from, int32_t to) const {
  if (!inside(from) || !inside(to) || activeCount() == 0) return false;
  if (from > to) std::swap(from, to);
  const int32_t length = to - from + 1;
  std::array<int, kMaxChannels> chosen{};
  int chosenCount = 0;
  for (int c = 0; c < channels_; ++c) {
    if (active_[static_cast<size_t>(c)]) chosen[static_cast<size_t>(chosenCount++)] = c;
  }
  if (!target.create(sampleRate_, chosenCount, bits_, length, formatTag_)) return false;
  const float* first = samples() + index(from, 0);
  if (chosenCount == channels_) {
    std::memcpy(target.samples(), first, bytesOf(length, channels_));
  } else {
    packChannels(first, channels_, chosen, chosenCount, length, target.samples());
  }
  loops.copyRangeTo(target.loops, from, to);
  markers.copyRangeTo(target.markers, from, to);
  return true;
}

const CMarkerList& CWave::copyMarkersOfRange(int32_t from, int32_t to) {
  if (!rangeMarkers_) rangeMarkers_ = std::make_unique<CMarkerList>();
  rangeMarkers_->clear();
  markers.copyRangeTo(*rangeMarkers_, std::min(from, to), std::max(from, to));
  return *rangeMarkers_;
}

bool CWave::canInsert(const CWave& source, int32_t position) const {
  if (frames_ == 0) return true;
  return inside(position) && source.frames_ >= 1 &&
         (source.channels_ == 1 || source.channels_ == channels_) && source.frames_ <= kMaxFrames - frames_;
}

bool CWave::insertBuffer(const CWave& source, int32_t position) {
  if (frames_ == 0) {
    const std::string ownName = fileName_;
    if (!copyFrom(source)) return false;
    fileName_ = ownName;
    return true;
  }
  if (!canInsert(source, position) || !openGap(position, source.frames_)) return false;
  float* gap = samples() + index(position, 0);
  if (source.channels_ == channels_) {
    std::memcpy(gap, source.samples(), source.sampleCount() * sizeof(float));
  } else {
    for (int32_t frame = 0; frame < source.frames_; ++frame) {
      gap = std::fill_n(gap, channels_, source.samples()[frame]);
    }
  }
  followInsert(position, source.frames_);
  markers.addAll(source.markers, position);
  if (!loops.hasLoops() && source.loops.hasLoops()) {
    loops = source.loops;
    for (int i = 0; i < loops.count(); ++i) {
      loops.setStart(i, loops.start(i) + position);
      loops.setEnd(i, loops.end(i) + position);
    }
  }
  return true;
}

bool CWave::insertSilence(int32_t position, int32_t length) {
  if (position < 0 || position > frames_ || length < 1 || !openGap(position, length)) return false;
  std::memset(samples() + index(position, 0), 0, bytesOf(length, channels_));
  followInsert(position, length);
  return true;
}

bool CWave::openGap(int32_t position, int32_t length) {
  if (length > kMaxFrames - frames_) return false;
  if (!resize(static_cast<int64_t>(frames_) + length, channels_)) return false;
  float* gap = samples() + index(position, 0);
  std::memmove(samples() + index(position + length, 0), gap, bytesOf(frames_ - position, channels_));
  frames_ += length;
  return true;
}

void CWave::followInsert(int32_t position, int32_t length) {
  markers.adjustForInsert(position, length);
  loops.adjustForInsert(position, length);
  envelope.adjustForInsert(position, length, frames_);
}

bool CWave::deleteRange(int32_t from, int32_t to) {
  if (!inside(from) || !inside(to)) return false;
  if (from > to) std::swap(from, to);
  loops.adjustForDelete(from, to);
  markers.adjustForDelete(from, to);
  envelope.adjustForDelete(from, to);
  const int32_t behind = frames_ - to - 1;
  std::memmove(samples() + index(from, 0), samples() + index(to + 1, 0), bytesOf(behind, channels_));
  frames_ = from + behind;
  resize(frames_, channels_);  // giving memory back can't lose samples, so its result is of no interest
  return true;
}

bool CWave::trim(int32_t from, int32_t to) {
  if (!inside(from) || !inside(to)) return false;
  if (from > to) std::swap(from, to);
  if (to + 1 < frames_) deleteRange(to + 1, frames_ - 1);
  if (from > 0) deleteRange(0, from - 1);
  return true;
}

bool CWave::removeChannel(int channel) {
  if (channels_ == 1 || channel < 0 || channel >= channels_) return false;
  float* target = samples();
  const float* source = samples();
  for (int32_t frame = 0; frame < frames_; ++frame) {
    for (int c = 0; c < channels_; ++c, ++source) {
      if (c != channel) *target++ = *source;
    }
  }
  envelope.removeChannel(channel);
  --channels_;
  if (!resize(frames_, channels_)) frames_ = 0;
  return true;
}

bool CWave::mixDownToMono(int mode) {
  if (channels_ == 1) return true;
  if (mode >= channels_) return false;
  if (mode == kMixActiveChannels && activeCount() == 0) return false;
  const float* frame = samples();
  float* mono = samples();
  const float divisor = static_cast<float>(mode == kMixActiveChannels ? activeCount() : channels_);
  for (int32_t f = 0; f < frames_; ++f, frame += channels_) {
    if (mode >= 0) {
      mono[f] = frame[mode];
      continue;
    }
    float sum = 0.0f;
    for (int c = 0; c < channels_; ++c) {
      if (mode == kMixAllChannels || active_[static_cast<size_t>(c)]) sum += frame[c];
    }
    mono[f] = sum / divisor;
  }
  envelope.clear();
  channels_ = 1;
  return resize(frames_, 1);
}

bool CWave::monoToStereo() {
  if (channels_ == 2) return true;
  if (channels_ > 2 || !resize(frames_, 2)) return false;
  float* block = samples();
  for (int64_t frame = static_cast<int64_t>(frames_) - 1; frame >= 0; --frame) {
    block[2 * frame] = block[2 * frame + 1] = block[frame];
  }
  channels_ = 2;
  if (envelope.active()) {
    envelope.addChannel();
    envelope.copyChannel(0, 1);  // both come out flat: a mono curve is not carried over
  }
  return true;
}

bool CWave::isActive(int channel) const {
  return channel >= 0 && channel < channels_ && active_[static_cast<size_t>(channel)];
}

int CWave::activeCount() const {
  return static_cast<int>(std::count(active_.begin(), active_.begin() + channels_, true));
}

bool CWave::allActive() const { return activeCount() == channels_; }

void CWave::setActive(ActiveOperation operation, int channel) {
  if (channel < 0 || channel >= channels_) return;
  bool& flag = active_[static_cast<size_t>(channel)];
  switch (operation) {
    case ActiveOperation::all:
      active_.fill(true);
      break;
    case ActiveOperation::solo:
      active_.fill(false);
      flag = true;
      break;
    case ActiveOperation::off:
      flag = false;
      break;
    case ActiveOperation::on:
      flag = true;
      break;
    case ActiveOperation::toggle:
      flag = !flag;
      break;
  }
}

bool CWave::needsEvenFrame() const {
  return channels_ % 2 == 1 && frames_ % 2 == 1 && (bits_ == 8 || bits_ == 24);
}

bool CWave::appendEvenFrame() {
  if (!openGap(frames_, 1)) return false;
  std::fill_n(samples() + index(frames_ - 1, 0), channels_, 0.0f);
  envelope.setLength(frames_);
  return true;
}

}  // namespace plumetta
