// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <span>
#include <vector>

namespace plumetta {

// Floats on their way from one thread to one other; neither ever waits.
class SampleRing {
 public:
  explicit SampleRing(size_t capacity) : floats_(capacity) {}

  // The writing thread's: all of them, or none where there is no room. Never allocates.
  bool push(const float* source, size_t count) noexcept {
    const size_t written = written_.load(std::memory_order_relaxed);
    if (count > floats_.size() - (written - read_.load(std::memory_order_acquire))) return false;
    const size_t place = written % floats_.size();
    const size_t first = std::min(count, floats_.size() - place);
    std::copy_n(source, first, floats_.begin() + static_cast<std::ptrdiff_t>(place));
    std::copy_n(source + first, count - first, floats_.begin());
    written_.store(written + count, std::memory_order_release);
    return true;
  }

  // The reading thread's: the oldest floats, as far as they stand in one piece; empty when there are none.
  std::span<const float> front() const noexcept {
    const size_t read = read_.load(std::memory_order_relaxed);
    const size_t waiting = written_.load(std::memory_order_acquire) - read;
    const size_t place = read % floats_.size();
    return {floats_.data() + place, std::min(waiting, floats_.size() - place)};
  }
  // How many floats wait in all. The reading thread's.
  size_t waiting() const noexcept {
    return written_.load(std::memory_order_acquire) - read_.load(std::memory_order_relaxed);
  }
  void pop(size_t count) noexcept { read_.fetch_add(count, std::memory_order_release); }

 private:
  std::vector<float> floats_;
  std::atomic<size_t> written_{0};  // of all floats so far, as is read_
  std::atomic<size_t> read_{0};
};

}  // namespace plumetta
