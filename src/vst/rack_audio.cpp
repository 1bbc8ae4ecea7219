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

bool Rack::hasActivePlugin() const {
  for (int position = 0; position < kPositions; ++position) {
    if (activeSlotAt(position) >= 0) return true;
  }
  return false;
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
  inputs.clear(0, channels + 1, frames);
  outputs.clear(0, channels + 1, frames);
  for (int c = 0; c < channels; ++c) {
    float* input = inputs.pointers()[c];
    for (int i = 0; i < frames; ++i) input[i] = samples[i * channels + c];
  }
  for (int position = 0; position < kPositions; ++position) {
    const int slot = activeSlotAt(position);
    if (slot >= 0 && !runOffline(slot, inputs, outputs, channels, frames)) return false;
  }
  for (int c = 0; c < channels; ++c) {
    if (!channelFlags[static_cast<size_t>(c)]) continue;
    const float* output = outputs.pointers()[c];
    for (int i = 0; i < frames; ++i) samples[i * channels + c] = output[i];
  }
  return true;
}

bool Rack::runOffline(int slot, PinBuffers& inputs, PinBuffers& outputs, int channels, int frames) noexcept {
  if (VstPlugin* plugin = host_.waitToProcess(slot)) {
    offlineSlot_ = slot;
    inputs.clear(channels + 1, furthestPin(*plugin), frames);
    outputs.clear(channels + 1, furthestPin(*plugin), frames);
    plugin->processReplacing(inputs.pointers(), outputs.pointers(), frames);
    const bool good = !host_.isGivenUp(slot);
    if (good) checkOutputs(host_, slot, outputs, channels + 1, frames);
    host_.endProcessing(slot);
    if (!good) return false;
  }
  // The next plug-in receives this one's output.
  for (int c = 0; c <= channels; ++c) {
    std::copy_n(outputs.pointers()[c], frames, inputs.pointers()[c]);
  }
  return true;
}

}  // namespace plumetta
