// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <memory>

#include "formats/input_stream.h"
#include "formats/output_stream.h"

namespace plumetta {

struct SndfileCloser {
  void operator()(SNDFILE* sound) const { sf_close(sound); }
};
using SndfilePointer = std::unique_ptr<SNDFILE, SndfileCloser>;

// libsndfile's door to our files. The stream must outlive what was opened on it.
SndfilePointer openSndfile(InputStream& in, SF_INFO& info);

// A stream that libsndfile writes to: it goes back to fill in headers, so it wants to know where the end is.
class SndfileOutput {
 public:
  explicit SndfileOutput(OutputStream& out) : out_(out) {}
  SndfilePointer open(SF_INFO& info);

  uint64_t length() const { return length_; }
  OutputStream& stream() { return out_; }
  void write(const void* bytes, size_t count);

 private:
  OutputStream& out_;
  uint64_t length_ = 0;
};

}  // namespace plumetta
