// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/pages_ahead.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <system_error>

namespace plumetta {
namespace {

constexpr size_t kPart = size_t{4} << 20;
constexpr size_t kPage = size_t{2} << 20;  // a huge one, to which large blocks are aligned
// Of linux/mman.h since Linux 5.14, which older headers lack; older kernels refuse it.
constexpr int kPopulateWrite = 23;

// False when the system can't.
bool populate(uint8_t* from, size_t bytes) { return madvise(from, bytes, kPopulateWrite) == 0; }

}  // namespace

PagesAhead::PagesAhead(void* block, size_t bytes) {
  const auto start = reinterpret_cast<uintptr_t>(block);
  if (bytes < 4 * kPart || start % kPage != 0) return;
  try {
    thread_ = std::thread([this, from = static_cast<uint8_t*>(block), bytes] {
      for (size_t done = 0; done < bytes && !ended_; done += kPart) {
        if (!populate(from + done, std::min(kPart, bytes - done))) return;
      }
    });
  } catch (const std::system_error&) {
    // The pages come when they are written.
  }
}

PagesAhead::~PagesAhead() {
  ended_ = true;
  if (thread_.joinable()) thread_.join();
}

}  // namespace plumetta
