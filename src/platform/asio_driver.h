// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace plumetta {

// The published interface of ASIO drivers, in the order of its table of functions, and its records in the
// layout that 64-bit drivers keep. Integers are 32 bits wide everywhere.

using AsioBool = int32_t;
using AsioError = int32_t;
using AsioSampleRate = double;  // Hz

constexpr AsioError kAsioOk = 0;
constexpr AsioError kAsioNotPresent = -1000;

// Selectors of AsioCallbacks::message.
enum AsioSelector : int32_t {
  kAsioSelectorSupported = 1,
  kAsioEngineVersion = 2,
  kAsioResetRequest = 3,
  kAsioBufferSizeChange = 4,
  kAsioResyncRequest = 5,
  kAsioLatenciesChanged = 6,
  kAsioSupportsTimeInfo = 7,
};

struct AsioTime;  // positions and time code; nothing here looks into it
struct AsioClockSource;

struct AsioClassId {
  uint32_t data1 = 0;
  uint16_t data2 = 0;
  uint16_t data3 = 0;
  uint8_t data4[8] = {};
  bool operator==(const AsioClassId&) const = default;
};

struct AsioBufferInfo {
  AsioBool isInput = 0;
  int32_t channel = 0;
  void* buffers[2] = {};  // the driver's double buffer
};

struct AsioChannelInfo {
  int32_t channel = 0;
  AsioBool isInput = 0;
  AsioBool isActive = 0;
  int32_t group = 0;
  int32_t sampleType = 0;
  char name[32] = {};
};

// Called by the driver, on a thread of its own. `half` is the half of each double buffer that is to be
// filled.
struct AsioCallbacks {
  void (*bufferSwitch)(int32_t half, AsioBool processNow) = nullptr;
  void (*sampleRateChanged)(AsioSampleRate rate) = nullptr;
  int32_t (*message)(int32_t selector, int32_t value, void* text, double* option) = nullptr;
  AsioTime* (*bufferSwitchTimeInfo)(AsioTime* time, int32_t half, AsioBool processNow) = nullptr;
};

static_assert(sizeof(AsioClassId) == 16);
static_assert(sizeof(AsioChannelInfo) == 52);
static_assert(sizeof(void*) != 8 || (sizeof(AsioBufferInfo) == 24 && sizeof(AsioCallbacks) == 32));

// A COM object: created and called on one thread, but for outputReady, which belongs into the buffer switch.
// Never deleted, only released.
class AsioDriver {
 public:
  virtual int32_t QueryInterface(const AsioClassId& interfaceId, void** object) = 0;
  virtual uint32_t AddRef() = 0;
  virtual uint32_t Release() = 0;

  virtual AsioBool init(void* systemHandle) = 0;
  virtual void getDriverName(char* name) = 0;  // 32 bytes
  virtual int32_t getDriverVersion() = 0;
  virtual void getErrorMessage(char* text) = 0;  // 124 bytes
  virtual AsioError start() = 0;
  virtual AsioError stop() = 0;
  virtual AsioError getChannels(int32_t* inputs, int32_t* outputs) = 0;
  virtual AsioError getLatencies(int32_t* inputFrames, int32_t* outputFrames) = 0;
  virtual AsioError getBufferSize(int32_t* minimum, int32_t* maximum, int32_t* preferred,
                                  int32_t* granularity) = 0;
  virtual AsioError canSampleRate(AsioSampleRate rate) = 0;
  virtual AsioError getSampleRate(AsioSampleRate* rate) = 0;
  virtual AsioError setSampleRate(AsioSampleRate rate) = 0;
  virtual AsioError getClockSources(AsioClockSource* sources, int32_t* count) = 0;
  virtual AsioError setClockSource(int32_t index) = 0;
  virtual AsioError getSamplePosition(int64_t* position, int64_t* nanoseconds) = 0;
  virtual AsioError getChannelInfo(AsioChannelInfo* info) = 0;
  virtual AsioError createBuffers(AsioBufferInfo* infos, int32_t count, int32_t frames,
                                  AsioCallbacks* callbacks) = 0;
  virtual AsioError disposeBuffers() = 0;
  virtual AsioError controlPanel() = 0;
  virtual AsioError future(int32_t selector, void* option) = 0;
  virtual AsioError outputReady() = 0;

 protected:
  ~AsioDriver() = default;
};

}  // namespace plumetta
