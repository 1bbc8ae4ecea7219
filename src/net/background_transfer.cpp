// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/background_transfer.h"

#include <system_error>
#include <utility>

#include "net/curl_library.h"

namespace plumetta {

BackgroundTransfer::BackgroundTransfer(TransferRequest request, TransferSink sink)
    : request_(std::move(request)), sink_(std::move(sink)) {
  prepareCurl();
  try {
    result_ = std::async(std::launch::async, [this] { return transfer(request_, sink_, state_); });
  } catch (const std::system_error&) {  // no more threads
    std::promise<TransferResult> none;
    none.set_value({TransferStatus::failed, "The network can't be used."});
    result_ = none.get_future();
  }
}

BackgroundTransfer::~BackgroundTransfer() {
  cancel();
  result_.wait();
}

bool BackgroundTransfer::finished(std::chrono::milliseconds patience) const {
  return result_.wait_for(patience) == std::future_status::ready;
}

}  // namespace plumetta
