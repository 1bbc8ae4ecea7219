// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/vst_plugin.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/crash_note.h"
#include "platform/current_folder.h"
#include "platform/paths.h"
#include "vst/plugin_text.h"
#include "vst/vst_host.h"

namespace plumetta {
namespace {

constexpr size_t kEffectNameBytes = 32;
constexpr size_t kProductBytes = 64;  // and of the vendor
// What a plug-in may write for one text: many write more than the published sizes.
constexpr size_t kTextBuffer = 1024;
constexpr size_t kMostTextBytes = 255;

std::string directoryOf(const std::string& path) {
  return path.substr(0, path.size() - fileNameOf(path).size());
}

}  // namespace

VstPlugin::VstPlugin() {
  speakerArrangement_.type = kSpeakerArrangementStereo;
  speakerArrangement_.numChannels = 2;
  speakerArrangement_.speakers[0].type = kSpeakerLeft;
  speakerArrangement_.speakers[1].type = kSpeakerRight;
}

// ---- Loading and closing --------------------------------------------------------------------------------

int VstPlugin::load(const std::string& path) {
  path_ = path;
  directory_ = directoryOf(path);
  noteName_ = path;
  const CrashBlame blame(noteName_.c_str());
  setCurrentFolder(directory_);
  if (library_.open(path)) effect_ = callEntry();
  // Without a dispatcher nothing could be asked of it.
  if (effect_ != nullptr && effect_->magic == kEffectMagic && effect_->dispatcher != nullptr) return 0;
  effect_ = nullptr;
  library_.close();
  return -1;
}

AEffect* VstPlugin::callEntry() {
  PluginEntry* entry = library_.function<PluginEntry>("VSTPluginMain");
  if (entry == nullptr) entry = library_.function<PluginEntry>("main");
  if (entry == nullptr) return nullptr;
  return entry(probing_ ? ScanHostCallback : HostCallback);
}

int VstPlugin::probe(const std::string& path) {
  probing_ = true;
  if (load(path) != 0) return -1;
  dispatch(effOpen);
  readInfo();
  return 0;
}

void VstPlugin::close() {
  if (loaded()) {
    dispatch(effClose);
    const CrashBlame blame(noteName_.c_str());
    library_.close();
  }
  infoValid_ = false;
  effect_ = nullptr;
  probing_ = false;
  chunk_ = {};
}

std::string VstPlugin::fileName() const { return fileNameOf(path_); }

// ---- Calls ----------------------------------------------------------------------------------------------

intptr_t VstPlugin::dispatch(int32_t opcode, int32_t index, intptr_t value, void* pointer,
                             float number) const {
  if (!loaded()) return 0;
  const CrashBlame blame(noteName_.c_str());
  return effect_->dispatcher(effect_, opcode, index, value, pointer, number);
}

std::string VstPlugin::text(int32_t opcode, size_t mostBytes, int32_t index, intptr_t value) const {
  std::array<char, kTextBuffer> buffer{};
  dispatch(opcode, index, value, buffer.data());
  const auto end = std::find(buffer.begin(), buffer.end() - 1, '\0');
  return plainText({buffer.data(), static_cast<size_t>(end - buffer.begin())}, mostBytes);
}

float VstPlugin::parameter(int index) const {
  if (index < 0 || index >= parameterCount() || effect_->getParameter == nullptr) return 0.0f;
  const CrashBlame blame(noteName_.c_str());
  return effect_->getParameter(effect_, index);
}

void VstPlugin::setParameter(int index, float value) const {
  if (index < 0 || index >= parameterCount() || effect_->setParameter == nullptr) return;
  const CrashBlame blame(noteName_.c_str());
  effect_->setParameter(effect_, index, value);
}

int VstPlugin::parameterCount() const {
  return loaded() ? std::clamp(effect_->numParams, 0, kMostParameters) : 0;
}

int VstPlugin::programCount() const {
  return loaded() ? std::clamp(effect_->numPrograms, 0, kMostParameters) : 0;
}

int VstPlugin::inputCount() const { return loaded() ? std::clamp(effect_->numInputs, 0, kMostPins) : 0; }

int VstPlugin::outputCount() const { return loaded() ? std::clamp(effect_->numOutputs, 0, kMostPins) : 0; }

std::string VstPlugin::programName() const { return text(effGetProgramName, kMostTextBytes); }

std::string VstPlugin::programName(int program) const {
  constexpr intptr_t kAnyCategory = -1;
  return text(effGetProgramNameIndexed, kMostTextBytes, program, kAnyCategory);
}

std::string VstPlugin::parameterName(int index) const { return text(effGetParamName, kMostTextBytes, index); }

std::string VstPlugin::parameterDisplay(int index) const {
  return text(effGetParamDisplay, kMostTextBytes, index);
}

std::string VstPlugin::parameterLabel(int index) const {
  return text(effGetParamLabel, kMostTextBytes, index);
}

std::span<const uint8_t> VstPlugin::chunk(bool ofProgram) const {
  void* data = nullptr;
  const intptr_t bytes = dispatch(effGetChunk, ofProgram ? 1 : 0, 0, &data);
  if (data == nullptr || bytes <= 0 || bytes > std::numeric_limits<int32_t>::max()) return {};
  return {static_cast<const uint8_t*>(data), static_cast<size_t>(bytes)};
}

void VstPlugin::setChunk(std::span<const uint8_t> data, bool ofProgram) {
  if (!loaded()) return;
  chunk_.assign(data.begin(), data.end());
  dispatch(effSetChunk, ofProgram ? 1 : 0, static_cast<intptr_t>(chunk_.size()), chunk_.data());
}

// ---- Description ----------------------------------------------------------------------------------------

void VstPlugin::readInfo() {
  if (!loaded()) return;
  effectName_ = text(effGetEffectName, kEffectNameBytes);
  vendorName_ = text(effGetVendorString, kProductBytes);
  productName_ = text(effGetProductString, kProductBytes);
  vstVersion_ = static_cast<int32_t>(dispatch(effGetVstVersion));
  vendorVersion_ = static_cast<int32_t>(dispatch(effGetVendorVersion));
  category_ = static_cast<int32_t>(dispatch(effGetPlugCategory));
  infoValid_ = true;
}

std::string VstPlugin::displayName() const { return effectName_.empty() ? fileName() : effectName_; }

// ---- Audio ----------------------------------------------------------------------------------------------

void VstPlugin::processReplacing(float** inputs, float** outputs, int frames) noexcept {
  if (!canReplace() || effect_->processReplacing == nullptr) return;
  const CrashBlame blame(noteName_.c_str());
  flushMidiQueue();
  effect_->processReplacing(effect_, inputs, outputs, frames);
}

void VstPlugin::flushMidiQueue() noexcept {
  if (pendingMidi_ == 0 || !infoValid_) return;
  midiEvents_.numEvents = pendingMidi_;
  for (int32_t i = 0; i < pendingMidi_; ++i) {
    const auto k = static_cast<size_t>(i);
    midiEvents_.events[k] = reinterpret_cast<VstEvent*>(&midiQueue_[k]);
  }
  dispatch(effProcessEvents, 0, 0, &midiEvents_);
  pendingMidi_ = 0;
}

bool VstPlugin::queueMidi(const VstMidiEvent& event) noexcept {
  if (pendingMidi_ == kMostMidiEvents) return false;
  midiQueue_[static_cast<size_t>(pendingMidi_++)] = event;
  return true;
}

}  // namespace plumetta
