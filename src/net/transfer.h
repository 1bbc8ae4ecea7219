// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>

#include "net/net_address.h"

namespace plumetta {

// What is asked of a server, and the bounds of its answer. Redirects lead to the same schemes, five at most.
struct TransferRequest {
  std::string address;
  NetSchemes schemes = NetSchemes::webAndFiles;
  std::string agent;  // what the server is told of the program, "Name/1.0"
  uint64_t mostBytes = std::numeric_limits<uint64_t>::max();
  std::chrono::milliseconds patience = std::chrono::milliseconds::max();  // for all of it
  std::chrono::milliseconds silence{30000};                               // in which nothing at all comes
};

enum class TransferStatus {
  done,
  cancelled,
  failed,   // `reason` says why
  refused,  // the sink would not take it
};

struct TransferResult {
  TransferStatus status = TransferStatus::failed;
  std::string reason;  // a sentence
};

// What other threads may see of a transfer, and ask of it.
struct TransferState {
  std::atomic<bool> cancelled{false};
  std::atomic<uint64_t> received{0};  // bytes
  std::atomic<uint64_t> expected{0};  // in all; 0 while nobody knows

  // From 0 to 1; 0 while it can't be told.
  float fractionDone() const;
};

// Takes the bytes as they come. False ends the transfer.
using TransferSink = std::function<bool(const char* bytes, size_t count)>;

// Fetches what an address names. Returns when that is done; asked to stop, within 50 ms but for the end of an
// FTP transfer, where the library looks up once a second while it waits for the last two replies. Any thread.
TransferResult transfer(const TransferRequest& request, const TransferSink& sink, TransferState& state);

}  // namespace plumetta
