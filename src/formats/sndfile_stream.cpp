// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/sndfile_stream.h"

#include <algorithm>
#include <cstdio>

namespace plumetta {
namespace {

// Where a seek of the C kind ends; never before the start.
uint64_t seekTarget(sf_count_t offset, int whence, uint64_t position, uint64_t length) {
  uint64_t base = 0;
  if (whence == SEEK_CUR) base = position;
  if (whence == SEEK_END) base = length;
  return static_cast<uint64_t>(std::max<sf_count_t>(0, static_cast<sf_count_t>(base) + offset));
}

SndfileInput& inputOf(void* user) { return *static_cast<SndfileInput*>(user); }
SndfileOutput& outputOf(void* user) { return *static_cast<SndfileOutput*>(user); }
sf_count_t countOf(uint64_t value) { return static_cast<sf_count_t>(value); }

SF_VIRTUAL_IO readingCalls() {
  SF_VIRTUAL_IO calls{};
  calls.get_filelen = [](void* user) { return countOf(inputOf(user).length()); };
  calls.seek = [](sf_count_t offset, int whence, void* user) {
    InputStream& in = inputOf(user).stream();
    in.seek(seekTarget(offset, whence, in.position(), inputOf(user).length()));
    return countOf(in.position());
  };
  calls.read = [](void* bytes, sf_count_t count, void* user) {
    return count < 0 ? 0 : countOf(inputOf(user).stream().read(bytes, static_cast<size_t>(count)));
  };
  calls.tell = [](void* user) { return countOf(inputOf(user).stream().position()); };
  return calls;
}

SF_VIRTUAL_IO writingCalls() {
  SF_VIRTUAL_IO calls{};
  calls.get_filelen = [](void* user) { return countOf(outputOf(user).length()); };
  calls.seek = [](sf_count_t offset, int whence, void* user) {
    SndfileOutput& out = outputOf(user);
    out.seek(seekTarget(offset, whence, out.position(), out.length()));
    return countOf(out.position());
  };
  calls.write = [](const void* bytes, sf_count_t count, void* user) -> sf_count_t {
    if (count < 0) return 0;
    outputOf(user).write(bytes, static_cast<size_t>(count));
    return outputOf(user).failed() ? 0 : count;
  };
  calls.tell = [](void* user) { return countOf(outputOf(user).position()); };
  return calls;
}

}  // namespace

SndfilePointer SndfileInput::open(SF_INFO& info) {
  static SF_VIRTUAL_IO calls = readingCalls();
  return SndfilePointer(sf_open_virtual(&calls, SFM_READ, &info, this));
}

SndfilePointer SndfileOutput::open(SF_INFO& info) {
  static SF_VIRTUAL_IO calls = writingCalls();
  return SndfilePointer(sf_open_virtual(&calls, SFM_WRITE, &info, this));
}

void SndfileOutput::begin() {
  begun_ = true;
  out_.write(head_.data(), head_.size());
  out_.seek(position_);
}

void SndfileOutput::seek(uint64_t offset) { begun_ ? out_.seek(offset) : void(position_ = offset); }

void SndfileOutput::write(const void* bytes, size_t count) {
  if (!begun_) return writeHead(static_cast<const uint8_t*>(bytes), count);
  out_.write(bytes, count);
  length_ = std::max(length_, out_.position());
}

void SndfileOutput::writeHead(const uint8_t* bytes, size_t count) {
  if (position_ == 0) head_.clear();
  head_.resize(std::max<size_t>(head_.size(), position_ + count));
  std::copy_n(bytes, count, head_.begin() + static_cast<ptrdiff_t>(position_));
  position_ += count;
  length_ = head_.size();
}

}  // namespace plumetta
