// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/take_writer.h"

#include <chrono>

namespace plumetta {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPoll{20};
// One write moves at most this much, so that progress shows on a slow disk.
constexpr size_t kFloatsPerWrite = size_t{1} << 15;
constexpr milliseconds kPatience{2000};

}  // namespace

TakeWriter::TakeWriter(std::unique_ptr<File> file, int channels, size_t ringFrames, PollTimer& timer)
    : timer_(timer), state_(std::make_shared<State>(std::move(file), channels, ringFrames)) {}

TakeWriter::~TakeWriter() { finish(); }

bool TakeWriter::start() {
  try {
    thread_ = std::thread([state = state_] { state->run(); });
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

bool TakeWriter::write(const float* samples, int frames) noexcept {
  if (state_->failed || state_->ending) return false;
  const size_t count = static_cast<size_t>(frames) * static_cast<size_t>(state_->channels);
  if (!state_->ring.push(samples, count)) {
    state_->failed = true;  // one frame lost in the middle would shift all that follow
    return false;
  }
  state_->framesTaken += frames;
  return true;
}

void TakeWriter::State::run() noexcept {
  while (!ending) {
    if (!drain()) break;
    std::this_thread::sleep_for(kPoll);
  }
  if (!error) drain();
  const std::error_code closing = file->close();
  if (!error) error = closing;
  if (error) failed = true;
  ended.set();
}

// False when the disk has refused.
bool TakeWriter::State::drain() noexcept {
  for (auto waiting = ring.front(); !waiting.empty(); waiting = ring.front()) {
    const size_t count = std::min(waiting.size(), kFloatsPerWrite);
    error = file->write(waiting.data(), count * sizeof(float));
    if (error) {
      failed = true;
      return false;
    }
    ring.pop(count);
    floatsOnDisk += count;
  }
  return true;
}

std::error_code TakeWriter::finish() {
  if (!thread_.joinable()) return {};
  state_->ending = true;
  uint64_t before = state_->floatsOnDisk;
  for (milliseconds since = timer_.now(); !state_->ended.waitFor(kPoll);) {
    if (const uint64_t present = state_->floatsOnDisk; present != before) {
      before = present;
      since = timer_.now();
    } else if (timer_.now() - since >= kPatience) {
      thread_.detach();
      return std::make_error_code(std::errc::timed_out);
    }
  }
  thread_.join();
  return state_->error;
}

}  // namespace plumetta
