// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/shared_library.h"

namespace plumetta {

// The part of the C interface of libvorbisfile 1.x that reading a stream needs, in the library's own layout.

// The library's state of an open stream. Its size belongs to the library: below 1000 bytes in every 1.x.
struct OggVorbisFile {
  alignas(16) std::byte state[4096];
};

// The first fields of the library's record.
struct VorbisInfo {
  int version;
  int channels;
  long rate;
};

struct VorbisComment {
  char** userComments;
  int* commentLengths;
  int comments;
  char* vendor;
};

// As fread, fseek, fclose and ftell.
struct VorbisCallbacks {
  size_t (*read)(void* destination, size_t itemBytes, size_t items, void* source);
  int (*seek)(void* source, int64_t offset, int whence);
  int (*close)(void* source);
  long (*tell)(void* source);
};

// What the functions return instead of a count.
enum VorbisError : int { kVorbisNotVorbis = -132 };

// Every call goes to the loaded library.
class VorbisLibrary {
 public:
  // False when it can't be loaded or lacks one of the functions.
  bool load();

  int (*openCallbacks)(void* source, OggVorbisFile* stream, const char* initial, long initialBytes,
                       VorbisCallbacks callbacks) = nullptr;
  VorbisComment* (*comment)(OggVorbisFile* stream, int link) = nullptr;
  VorbisInfo* (*info)(OggVorbisFile* stream, int link) = nullptr;
  int64_t (*pcmTotal)(OggVorbisFile* stream, int link) = nullptr;
  long (*read)(OggVorbisFile* stream, char* buffer, int bytes, int bigEndian, int wordBytes, int isSigned,
               int* section) = nullptr;
  int (*clear)(OggVorbisFile* stream) = nullptr;

 private:
  SharedLibrary library_;
};

}  // namespace plumetta
