// SPDX-License-Identifier: GPL-3.0-or-later
// A plug-in of two programs and three parameters that ends the process when it is told what no plug-in should
// be.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "vst/aeffect.h"

using namespace plumetta;

namespace {

constexpr int kPrograms = 2;
constexpr int kParameters = 3;

void require(bool condition) {
  if (!condition) std::abort();
}

intptr_t answer(AEffect*, int32_t opcode, int32_t index, intptr_t value, void* pointer, float) {
  if (opcode == effSetProgram) require(value >= 0 && value < kPrograms);
  if (opcode == effSetProgramName) require(std::strlen(static_cast<const char*>(pointer)) <= 28);
  if (opcode == effSetChunk) {
    require(index == 0 || index == 1);
    int sum = 0;  // reads all of it
    for (intptr_t i = 0; i < value; ++i) sum += static_cast<const uint8_t*>(pointer)[i];
    require(sum >= 0);
  }
  return 0;
}

AEffect& theEffect() {
  static AEffect made = [] {
    AEffect fresh{};
    fresh.magic = kEffectMagic;
    fresh.dispatcher = answer;
    fresh.setParameter = [](AEffect*, int32_t i, float value) {
      require(i >= 0 && i < kParameters && std::isfinite(value));
    };
    fresh.getParameter = [](AEffect*, int32_t) { return 0.5f; };
    fresh.numPrograms = kPrograms;
    fresh.numParams = kParameters;
    fresh.flags = effFlagsProgramChunks;
    fresh.uniqueID = 0x50744678;  // "PtFx"
    return fresh;
  }();
  return made;
}

}  // namespace

extern "C" AEffect* VSTPluginMain(HostCallbackFunction) { return &theEffect(); }
