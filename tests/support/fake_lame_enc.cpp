// SPDX-License-Identifier: GPL-3.0-or-later
// An encoder DLL that encodes nothing: the stream is the configuration it was given, then the samples as they
// came, then "END!"; the header is "HEAD" over the first bytes of the file.
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr uint32_t kConfigurationBytes = 331;
uint8_t configuration[kConfigurationBytes];
bool first;

}  // namespace

extern "C" uint32_t beInitStream(const void* given, uint32_t* samples, uint32_t* bytes, uint32_t* stream) {
  std::memcpy(configuration, given, kConfigurationBytes);
  *samples = 100;
  *bytes = 1000;
  *stream = 7;
  first = true;
  return 0;
}

extern "C" uint32_t beEncodeChunk(uint32_t stream, uint32_t samples, const int16_t* from, uint8_t* out,
                                  uint32_t* bytes) {
  *bytes = 0;
  if (stream != 7 || samples > 100) return 1;
  if (first) {
    std::memcpy(out, configuration, kConfigurationBytes);
    *bytes = kConfigurationBytes;
  }
  first = false;
  std::memcpy(out + *bytes, from, samples * sizeof(int16_t));
  *bytes += samples * static_cast<uint32_t>(sizeof(int16_t));
  return 0;
}

extern "C" uint32_t beDeinitStream(uint32_t stream, uint8_t* out, uint32_t* bytes) {
  std::memcpy(out, "END!", 4);
  *bytes = 4;
  return stream == 7 ? 0 : 1;
}

extern "C" uint32_t beCloseStream(uint32_t stream) { return stream == 7 ? 0 : 1; }

extern "C" void beVersion(void*) {}

extern "C" uint32_t beWriteVBRHeader(const char* path) {
  std::FILE* file = std::fopen(path, "rb+");
  if (file == nullptr) return 1;
  std::fwrite("HEAD", 1, 4, file);
  return std::fclose(file) == 0 ? 0 : 1;
}
