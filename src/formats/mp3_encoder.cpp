// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/mp3_encoder.h"

namespace plumetta {
namespace {

// Each interface under the name that its library goes by. A system has one of them at most.
struct EncoderLibrary {
  const char* name;
  std::unique_ptr<Mp3Encoder> (*encoder)(SharedLibrary library);
};
constexpr EncoderLibrary kLibraries[] = {{"lame_enc.dll", bladeEncoder}, {"libmp3lame.so.0", lameEncoder}};

}  // namespace

std::unique_ptr<Mp3Encoder> loadMp3Encoder() {
  for (const EncoderLibrary& candidate : kLibraries) {
    SharedLibrary library;
    if (!library.openOfSystem(candidate.name)) continue;
    if (auto encoder = candidate.encoder(std::move(library))) return encoder;
  }
  return nullptr;
}

}  // namespace plumetta
