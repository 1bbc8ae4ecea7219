// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <future>

#include "net/transfer.h"

namespace plumetta {

// A transfer on a thread of its own. The sink is called there, and no longer once this is finished.
class BackgroundTransfer {
 public:
  BackgroundTransfer(TransferRequest request, TransferSink sink);
  ~BackgroundTransfer();  // asks it to stop and waits until it has
  BackgroundTransfer(const BackgroundTransfer&) = delete;
  BackgroundTransfer& operator=(const BackgroundTransfer&) = delete;

  void cancel() { state_.cancelled = true; }
  // Waits for the end, no longer than this; whether it has come.
  bool finished(std::chrono::milliseconds patience) const;
  // Waits for the end.
  const TransferResult& result() const { return result_.get(); }
  const TransferState& state() const { return state_; }

 private:
  TransferRequest request_;
  TransferSink sink_;
  TransferState state_;
  std::shared_future<TransferResult> result_;  // its end waits for the thread
};

}  // namespace plumetta
