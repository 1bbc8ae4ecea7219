// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/wavpack_library.h"

#include "platform/codec_names.h"

namespace plumetta {

bool WavpackLibrary::load() {
  return library_.openOfSystem(codecNames().wavpack) &&
         library_.resolve("WavpackGetLibraryVersion", version) &&
         library_.resolve("WavpackOpenFileInput", openFileInput) &&
         library_.resolve("WavpackGetNumSamples", numSamples) &&
         library_.resolve("WavpackGetBitsPerSample", bitsPerSample) &&
         library_.resolve("WavpackGetNumChannels", numChannels) &&
         library_.resolve("WavpackGetSampleRate", sampleRate) &&
         library_.resolve("WavpackUnpackSamples", unpackSamples) &&
         library_.resolve("WavpackGetMode", mode) && library_.resolve("WavpackGetNumErrors", numErrors) &&
         library_.resolve("WavpackCloseFile", closeFile);
}

}  // namespace plumetta
