// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <memory>
#include <vector>

#include "formats/input_stream.h"
#include "formats/output_stream.h"

namespace plumetta {

struct SndfileCloser {
  void operator()(SNDFILE* sound) const { sf_close(sound); }
};
using SndfilePointer = std::unique_ptr<SNDFILE, SndfileCloser>;

// A stream that libsndfile reads from. It must outlive what was opened on it.
class SndfileInput {
 public:
  // `length`: how long the library takes the file for. Longer than the stream for a truncated one, which some
  // of its readers would refuse as a whole otherwise.
  SndfileInput(InputStream& in, uint64_t length) : in_(in), length_(length) {}
  SndfilePointer open(SF_INFO& info);

  uint64_t length() const { return length_; }
  InputStream& stream() { return in_; }

 private:
  InputStream& in_;
  uint64_t length_;
};

// A stream that libsndfile writes to: it goes back to fill in headers, so it wants to know where the end is.
class SndfileOutput {
 public:
  explicit SndfileOutput(OutputStream& out) : out_(out) {}
  SndfilePointer open(SF_INFO& info);
  // The header is complete. Until then it is kept here, since one that is written anew may be shorter, and of
  // the longer one nothing may stay behind what few samples come.
  void begin();

  uint64_t length() const { return length_; }
  uint64_t position() const { return begun_ ? out_.position() : position_; }
  bool failed() const { return out_.failed(); }
  void seek(uint64_t offset);
  void write(const void* bytes, size_t count);

 private:
  void writeHead(const uint8_t* bytes, size_t count);

  OutputStream& out_;
  bool begun_ = false;
  std::vector<uint8_t> head_;
  uint64_t position_ = 0;  // in the head
  uint64_t length_ = 0;
};

}  // namespace plumetta
