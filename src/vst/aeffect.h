// SPDX-License-Identifier: GPL-3.0-or-later
// What a VST 2 plug-in and its host share in memory, in processes of 64 bits: records, numbers, functions.
#pragma once

#include <cstddef>
#include <cstdint>

namespace plumetta {

struct AEffect;

// Functions have the system's own calling convention, of which x86-64 has but one.

using HostCallbackFunction = intptr_t (*)(AEffect*, int32_t opcode, int32_t index, intptr_t value,
                                          void* pointer, float number);
using PluginEntry = AEffect*(HostCallbackFunction);

inline constexpr int32_t kEffectMagic = 0x56737450;  // "VstP"

struct AEffect {
  using Dispatcher = intptr_t (*)(AEffect*, int32_t opcode, int32_t index, intptr_t value, void* pointer,
                                  float number);
  using Process = void (*)(AEffect*, float** inputs, float** outputs, int32_t frames);
  using ProcessDouble = void (*)(AEffect*, double** inputs, double** outputs, int32_t frames);
  using SetParameter = void (*)(AEffect*, int32_t index, float value);
  using GetParameter = float (*)(AEffect*, int32_t index);

  int32_t magic;
  Dispatcher dispatcher;
  Process process;  // adds to its outputs; long given up
  SetParameter setParameter;
  GetParameter getParameter;
  int32_t numPrograms;
  int32_t numParams;
  int32_t numInputs;
  int32_t numOutputs;
  int32_t flags;
  intptr_t reserved1, reserved2;
  int32_t initialDelay;  // frames
  int32_t realQualities, offQualities;
  float ioRatio;
  void* object;  // the plug-in's own
  void* user;
  int32_t uniqueID;
  int32_t version;
  Process processReplacing;
  ProcessDouble processDoubleReplacing;
  char future[56];
};

enum EffectFlags : int32_t {
  effFlagsHasEditor = 1,
  effFlagsCanReplacing = 16,
  effFlagsProgramChunks = 32,
  effFlagsIsSynth = 256,
};

// What the host asks of a plug-in.
enum EffectOpcode : int32_t {
  effOpen = 0,
  effClose = 1,
  effSetProgram = 2,
  effGetProgram = 3,
  effSetProgramName = 4,
  effGetProgramName = 5,
  effGetParamLabel = 6,
  effGetParamDisplay = 7,
  effGetParamName = 8,
  effSetSampleRate = 10,
  effSetBlockSize = 11,
  effMainsChanged = 12,
  effEditGetRect = 13,
  effEditOpen = 14,
  effEditClose = 15,
  effEditIdle = 19,
  effGetChunk = 23,
  effSetChunk = 24,
  effProcessEvents = 25,
  effGetProgramNameIndexed = 29,
  effGetPlugCategory = 35,
  effSetSpeakerArrangement = 42,
  effGetEffectName = 45,
  effGetVendorString = 47,
  effGetProductString = 48,
  effGetVendorVersion = 49,
  effIdle = 53,
  effGetVstVersion = 58,
};

// What a plug-in asks of the host.
enum HostOpcode : int32_t {
  audioMasterAutomate = 0,
  audioMasterVersion = 1,
  audioMasterCurrentId = 2,
  audioMasterIdle = 3,
  audioMasterWantMidi = 6,
  audioMasterGetTime = 7,
  audioMasterTempoAt = 10,
  audioMasterGetNumAutomatableParameters = 11,
  audioMasterGetParameterQuantization = 12,
  audioMasterNeedIdle = 14,
  audioMasterSizeWindow = 15,
  audioMasterGetSampleRate = 16,
  audioMasterGetBlockSize = 17,
  audioMasterGetPreviousPlug = 20,
  audioMasterGetNextPlug = 21,
  audioMasterSetOutputSampleRate = 30,
  audioMasterGetVendorString = 32,
  audioMasterGetProductString = 33,
  audioMasterGetVendorVersion = 34,
  audioMasterCanDo = 37,
  audioMasterGetLanguage = 38,
  audioMasterGetDirectory = 41,
  audioMasterUpdateDisplay = 42,
};

enum TimeInfoFlags : int32_t {
  kVstTransportChanged = 1,
  kVstTransportPlaying = 2,
  kVstPpqPosValid = 1 << 9,
  kVstTempoValid = 1 << 10,
  kVstBarsValid = 1 << 11,
  kVstTimeSigValid = 1 << 13,
};

struct VstTimeInfo {
  double samplePos;
  double sampleRate;
  double nanoSeconds;
  double ppqPos;  // quarter notes, as the three positions below
  double tempo;   // beats a minute
  double barStartPos, cycleStartPos, cycleEndPos;
  int32_t timeSigNumerator, timeSigDenominator;
  int32_t smpteOffset, smpteFrameRate;
  int32_t samplesToNextClock;
  int32_t flags;
};

struct VstEvent {
  int32_t type;
  int32_t byteSize;
  int32_t deltaFrames;
  int32_t flags;
  char data[16];
};

inline constexpr int32_t kVstMidiType = 1;

struct VstMidiEvent {
  int32_t type;         // kVstMidiType
  int32_t byteSize;     // of this record
  int32_t deltaFrames;  // from the start of the block
  int32_t flags;
  int32_t noteLength, noteOffset;
  char midiData[4];
  char detune;
  char noteOffVelocity;
  char reserved1, reserved2;
};

inline constexpr int kMostMidiEvents = 128;

// The published record ends in two pointers and is meant to be as long as its sender likes.
struct VstEvents {
  int32_t numEvents;
  intptr_t reserved;
  VstEvent* events[kMostMidiEvents];
};

struct VstSpeakerProperties {
  float azimuth, elevation, radius, reserved;
  char name[64];
  int32_t type;
  char future[28];
};

inline constexpr int32_t kSpeakerArrangementStereo = 1;
inline constexpr int32_t kSpeakerLeft = 1;
inline constexpr int32_t kSpeakerRight = 2;

struct VstSpeakerArrangement {
  int32_t type;
  int32_t numChannels;
  VstSpeakerProperties speakers[8];
};

// Of an editor, in pixels.
struct ERect {
  int16_t top, left, bottom, right;
};

static_assert(sizeof(void*) == 8 && sizeof(intptr_t) == 8, "plug-ins are loaded into processes of 64 bits");
static_assert(offsetof(AEffect, magic) == 0 && offsetof(AEffect, dispatcher) == 8);
static_assert(offsetof(AEffect, process) == 16 && offsetof(AEffect, setParameter) == 24);
static_assert(offsetof(AEffect, getParameter) == 32 && offsetof(AEffect, numPrograms) == 40);
static_assert(offsetof(AEffect, numParams) == 44 && offsetof(AEffect, numInputs) == 48);
static_assert(offsetof(AEffect, numOutputs) == 52 && offsetof(AEffect, flags) == 56);
static_assert(offsetof(AEffect, reserved1) == 64 && offsetof(AEffect, reserved2) == 72);
static_assert(offsetof(AEffect, initialDelay) == 80 && offsetof(AEffect, realQualities) == 84);
static_assert(offsetof(AEffect, offQualities) == 88 && offsetof(AEffect, ioRatio) == 92);
static_assert(offsetof(AEffect, object) == 96 && offsetof(AEffect, user) == 104);
static_assert(offsetof(AEffect, uniqueID) == 112 && offsetof(AEffect, version) == 116);
static_assert(offsetof(AEffect, processReplacing) == 120 && offsetof(AEffect, processDoubleReplacing) == 128);
static_assert(offsetof(AEffect, future) == 136 && sizeof(AEffect) == 192);
static_assert(offsetof(VstTimeInfo, samplePos) == 0 && offsetof(VstTimeInfo, sampleRate) == 8);
static_assert(offsetof(VstTimeInfo, nanoSeconds) == 16 && offsetof(VstTimeInfo, ppqPos) == 24);
static_assert(offsetof(VstTimeInfo, tempo) == 32 && offsetof(VstTimeInfo, barStartPos) == 40);
static_assert(offsetof(VstTimeInfo, cycleStartPos) == 48 && offsetof(VstTimeInfo, cycleEndPos) == 56);
static_assert(offsetof(VstTimeInfo, timeSigNumerator) == 64 &&
              offsetof(VstTimeInfo, timeSigDenominator) == 68);
static_assert(offsetof(VstTimeInfo, smpteOffset) == 72 && offsetof(VstTimeInfo, smpteFrameRate) == 76);
static_assert(offsetof(VstTimeInfo, samplesToNextClock) == 80 && offsetof(VstTimeInfo, flags) == 84);
static_assert(sizeof(VstTimeInfo) == 88);
static_assert(offsetof(VstEvent, deltaFrames) == 8 && offsetof(VstEvent, data) == 16 &&
              sizeof(VstEvent) == 32);
static_assert(offsetof(VstMidiEvent, noteLength) == 16 && offsetof(VstMidiEvent, midiData) == 24);
static_assert(offsetof(VstMidiEvent, detune) == 28 && sizeof(VstMidiEvent) == 32);
static_assert(offsetof(VstEvents, reserved) == 8 && offsetof(VstEvents, events) == 16);
static_assert(offsetof(VstSpeakerProperties, name) == 16 && offsetof(VstSpeakerProperties, type) == 80);
static_assert(offsetof(VstSpeakerProperties, future) == 84 && sizeof(VstSpeakerProperties) == 112);
static_assert(offsetof(VstSpeakerArrangement, speakers) == 8 && sizeof(VstSpeakerArrangement) == 904);
static_assert(sizeof(ERect) == 8);

}  // namespace plumetta
