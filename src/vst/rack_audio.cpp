// SPDX-License-Identifier: GPL-3.0-or-later
// What a block goes through in the rack: in place while it plays, from buffer to buffer over a document.
#include <algorithm>
#include <bit>

#include "core/cpu_variants.h"
#include "vst/rack.h"

namespace plumetta {
namespace {

constexpr uint32_t kExponent = 0x7F800000;  // all ones in infinities and in what is no number

PLUMETTA_WIDE_VECTORS bool allNumbers(const float* samples, int frames) {
  uint32_t bad = 0;
  for (int i = 0; i < frames; ++i) {
    bad |= (std::bit_cast<uint32_t>(samples[i]) & kExponent) == kExponent ? 1u : 0u;
  }
  return bad == 0;
}

// True when there were samples to silence.
bool silenceNonNumbers(float* samples, int frames) noexcept {
  if (allNumbers(samples, frames)) return false;
  for (int i = 0; i < frames; ++i) {
    if ((std::bit_cast<uint32_t>(samples[i]) & kExponent) == kExponent) samples[i] = 0.0f;
  }
  return true;
}

// The loops by pairs are what most files go through, and fast only with the distance known beforehand.
PLUMETTA_WIDE_VECTORS void splitPairs(const float* pairs, int frames, float* left, float* right) {
  for (int i = 0; i < frames; ++i) {
    left[i] = pairs[2 * i];
    right[i] = pairs[2 * i + 1];
  }
}

PLUMETTA_WIDE_VECTORS void joinPairs(const float* left, const float* right, int frames, float* pairs) {
  for (int i = 0; i < frames; ++i) {
    pairs[2 * i] = left[i];
    pairs[2 * i + 1] = right[i];
  }
}

void deinterleave(const float* samples, int frames, int channels, float** pins) {
  if (channels == 2) return splitPairs(samples, frames, pins[0], pins[1]);
  for (int c = 0; c < channels; ++c) {
    for (int i = 0; i < frames; ++i) pins[c][i] = samples[i * channels + c];
  }
}

void interleave(float** pins, int frames, int channels, const std::array<bool, kMaxChannels>& flags,
                float* samples) {
  if (channels == 2 && flags[0] && flags[1]) return joinPairs(pins[0], pins[1], frames, samples);
  for (int c = 0; c < channels; ++c) {
    if (!flags[static_cast<size_t>(c)]) continue;
    for (int i = 0; i < frames; ++i) samples[i * channels + c] = pins[c][i];
  }
}

void checkOutputs(VstHost& host, int slot, PinBuffers& pins, int channels, int frames) noexcept {
  bool silenced = false;
  for (int c = 0; c < channels; ++c) silenced |= silenceNonNumbers(pins.pointers()[c], frames);
  if (silenced) host.noteNotANumber(slot);
}

int furthestPin(const VstPlugin& plugin) { return std::max(plugin.inputCount(), plugin.outputCount()); }

}  // namespace

// ---- Playing --------------------------------------------------------------------------------------------

void Rack::setSampleRate(int hz) { host_.setSampleRate(static_cast<float>(hz)); }

void Rack::setPosition(double outputFrame) noexcept { host_.setPosition(outputFrame); }

void Rack::setPlaying(bool playing) noexcept { host_.setTransportPlaying(playing); }

// Audio thread; never allocates, never waits.
void Rack::process(float** channels, int channelCount, int frames) noexcept {
  if (offlineUses_.load() > 0) return;
  // Plug-ins were told how long a block can be, and have made their own room for that.
  const int longest = std::clamp(host_.blockSize(), 1, kBufferFrames);
  for (int done = 0; done < frames; done += longest) {
    const int piece = std::min(longest, frames - done);
    pins_.borrow(channels, channelCount, done);
    for (int position = 0; position < kPositions; ++position) {
      const int slot = activeSlotAt(position);
      if (slot >= 0 && !runInPlace(slot, channelCount, piece)) return;
    }
  }
  host_.setTransportChanged(false);
}

// False when it has come back after it was given up: others have gone on without this thread.
bool Rack::runInPlace(int slot, int channelCount, int frames) noexcept {
  VstPlugin* plugin = host_.beginProcessing(slot);
  if (plugin == nullptr) return true;
  pins_.clear(channelCount, furthestPin(*plugin), frames);
  plugin->processReplacing(pins_.pointers(), pins_.pointers(), frames);
  const bool good = !host_.isGivenUp(slot);
  if (good) checkOutputs(host_, slot, pins_, channelCount, frames);
  host_.endProcessing(slot);
  return good;
}

// ---- Over samples ---------------------------------------------------------------------------------------

int Rack::activePlugins() const {
  int count = 0;
  for (int position = 0; position < kPositions; ++position) count += activeSlotAt(position) >= 0 ? 1 : 0;
  return count;
}

std::vector<std::string> Rack::takeFaultTexts() {
  std::vector<std::string> texts;
  for (const PluginFault& fault : host_.takeFaults()) texts.push_back(fault.text());
  return texts;
}

bool Rack::processInterleaved(PinBuffers& inputs, PinBuffers& outputs, float* samples, int frames,
                              int channels, const std::array<bool, kMaxChannels>& channelFlags) noexcept {
  if (frames <= 0) return true;
  // One more than there are channels: a mono signal finds silence on a stereo plug-in's second input.
  inputs.clear(channels, channels + 1, frames);
  outputs.clear(0, channels + 1, frames);
  deinterleave(samples, frames, channels, inputs.pointers());
  bool handOver = false;
  for (int position = 0; position < kPositions; ++position) {
    const int slot = activeSlotAt(position);
    if (slot < 0) continue;
    // Each plug-in receives the one before's output.
    for (int c = 0; c <= channels && handOver; ++c) {
      std::copy_n(outputs.pointers()[c], frames, inputs.pointers()[c]);
    }
    handOver = true;
    if (!runOffline(slot, inputs, outputs, channels, frames)) return false;
  }
  // Without a plug-in there is no output, which would be silence.
  if (handOver) interleave(outputs.pointers(), frames, channels, channelFlags, samples);
  return true;
}

bool Rack::runOffline(int slot, PinBuffers& inputs, PinBuffers& outputs, int channels, int frames) noexcept {
  VstPlugin* plugin = host_.waitToProcess(slot);
  if (plugin == nullptr) return false;
  offlineSlot_ = slot;
  inputs.clear(channels + 1, furthestPin(*plugin), frames);
  outputs.clear(channels + 1, furthestPin(*plugin), frames);
  plugin->processReplacing(inputs.pointers(), outputs.pointers(), frames);
  const bool good = !host_.isGivenUp(slot);
  if (good) checkOutputs(host_, slot, outputs, channels + 1, frames);
  host_.endProcessing(slot);
  return good;
}

}  // namespace plumetta
