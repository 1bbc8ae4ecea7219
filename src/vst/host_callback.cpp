// SPDX-License-Identifier: GPL-3.0-or-later
// What plug-ins ask of the host, and what they hear. Everything here may run on any thread.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "platform/message_pump.h"
#include "vst/vst_host.h"

namespace plumetta {
namespace {

constexpr int32_t kLastOpcode = 49;
constexpr intptr_t kHostVersion = 2400;
constexpr intptr_t kVendorVersion = 1;
constexpr intptr_t kEnglish = 1;
constexpr intptr_t kParameterSteps = 65535;
constexpr double kTempoFactor = 1000.0;  // plug-ins are used to ten times this

// How long the host's texts may be in a plug-in's memory, the zero included, as published.
constexpr size_t kHostTextBytes = 64;

intptr_t canDo(const void* pointer) {
  constexpr std::string_view kAbilities[] = {"sendVstMidiEvent", "receiveVstMidiEvent", "sizeWindow",
                                             "sendVstEvents",    "sendVstTimeInfo",     "supplyIdle"};
  if (pointer == nullptr) return 0;
  const std::string_view asked = static_cast<const char*>(pointer);
  return std::count(std::begin(kAbilities), std::end(kAbilities), asked) > 0 ? 1 : 0;
}

intptr_t copyText(const std::string& text, void* pointer) {
  if (pointer == nullptr) return 0;
  const size_t bytes = std::min(text.size(), kHostTextBytes - 1);
  auto* target = static_cast<char*>(pointer);
  std::memcpy(target, text.data(), bytes);
  target[bytes] = '\0';
  return 1;
}

// One that asks for it whenever it is redrawn would never come back, so that it isn't within itself.
void redraw(const VstPlugin& caller) {
  static thread_local bool redrawing = false;
  if (redrawing) return;
  redrawing = true;
  caller.dispatch(effEditIdle);
  redrawing = false;
}

// What only a plug-in in the table is answered.
intptr_t answerRegistered(VstPlugin& caller, int32_t opcode) {
  switch (opcode) {
    case audioMasterWantMidi:
      caller.wantsMidi = true;
      return 1;
    case audioMasterNeedIdle:
      caller.needsIdle = true;
      return 1;
    case audioMasterGetNumAutomatableParameters:
      return caller.effect()->numParams;
    case audioMasterGetDirectory:
      return reinterpret_cast<intptr_t>(caller.directory().c_str());
    case audioMasterUpdateDisplay:
      redraw(caller);
      return 0;
    default:
      return 0;
  }
}

intptr_t answer(VstHost& host, int slot, int32_t opcode, void* pointer) {
  switch (opcode) {
    case audioMasterVersion:
      return kHostVersion;
    case audioMasterCurrentId:
      return slot;
    case audioMasterIdle:
      dispatchWaitingMessages();
      return 0;
    case audioMasterGetTime:
      return reinterpret_cast<intptr_t>(&host.timeInfo());
    case audioMasterTempoAt:
      return static_cast<intptr_t>(host.tempo() * kTempoFactor);
    case audioMasterGetParameterQuantization:
      return kParameterSteps;
    case audioMasterSizeWindow:
    case audioMasterSetOutputSampleRate:
      return 1;
    case audioMasterGetSampleRate:
      return static_cast<intptr_t>(host.sampleRate());
    case audioMasterGetBlockSize:
      return host.blockSize();
    case audioMasterGetPreviousPlug:
    case audioMasterGetNextPlug:
      return -1;
    case audioMasterGetVendorString:
      return copyText(host.vendor(), pointer);
    case audioMasterGetProductString:
      return copyText(host.product(), pointer);
    case audioMasterGetVendorVersion:
      return kVendorVersion;
    case audioMasterCanDo:
      return canDo(pointer);
    case audioMasterGetLanguage:
      return kEnglish;
    default:
      break;
  }
  VstPlugin* caller = host.plugin(slot);
  return caller != nullptr ? answerRegistered(*caller, opcode) : 0;
}

}  // namespace

intptr_t HostCallback(AEffect* effect, int32_t opcode, int32_t, intptr_t, void* pointer, float) {
  VstHost* host = VstHost::current();
  if (host == nullptr || opcode < 0 || opcode > kLastOpcode) return 0;
  return answer(*host, host->slotOf(effect), opcode, pointer);
}

intptr_t ScanHostCallback(AEffect*, int32_t opcode, int32_t, intptr_t, void*, float) {
  if (VstHost::current() == nullptr) return 0;
  if (opcode == audioMasterVersion) return kHostVersion;
  return opcode == audioMasterCurrentId ? -1 : 0;
}

}  // namespace plumetta
