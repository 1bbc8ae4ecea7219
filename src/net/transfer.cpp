// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/transfer.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

#include "net/curl_library.h"

namespace plumetta {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLookMilliseconds = 20;  // between two looks at what is asked of a transfer
constexpr long kMostRedirects = 5;
constexpr long kServerReplySeconds = 10;  // for a reply on the control connection of FTP
constexpr long kHttpAuthenticate = 401;
constexpr long kHttpForbidden = 403;
constexpr long kHttpNotFound = 404;
constexpr long kHttpGone = 410;

// One transfer under way, as the callbacks of the library see it.
struct Transfer {
  const TransferRequest& request;
  const TransferSink& sink;
  TransferState& state;
  bool tooLarge = false;
  bool refused = false;
};

size_t onBytes(char* bytes, size_t size, size_t count, void* self) {
  auto& transfer = *static_cast<Transfer*>(self);
  const size_t length = size * count;
  transfer.tooLarge = length > transfer.request.mostBytes - transfer.state.received;
  if (transfer.tooLarge) return CURL_WRITEFUNC_ERROR;
  transfer.refused = !transfer.sink(bytes, length);
  if (transfer.refused) return CURL_WRITEFUNC_ERROR;
  transfer.state.received += length;
  return length;
}

// Also called where the library itself waits.
int onProgress(void* self, curl_off_t expected, curl_off_t, curl_off_t, curl_off_t) {
  const auto& transfer = *static_cast<Transfer*>(self);
  transfer.state.expected = static_cast<uint64_t>(std::max<curl_off_t>(expected, 0));
  return transfer.state.cancelled ? 1 : 0;
}

// One easy handle on a multi handle of its own, which lets us look up between the library's turns.
class CurlHandles {
 public:
  CurlHandles() : multi_(curl_multi_init()), easy_(curl_easy_init()) {}
  ~CurlHandles() {
    if (added_) curl_multi_remove_handle(multi_, easy_);
    curl_easy_cleanup(easy_);
    curl_multi_cleanup(multi_);
  }
  CurlHandles(const CurlHandles&) = delete;
  CurlHandles& operator=(const CurlHandles&) = delete;

  bool ready() const { return multi_ != nullptr && easy_ != nullptr; }
  template <class Value>
  void set(CURLoption option, Value value) {
    good_ = curl_easy_setopt(easy_, option, value) == CURLE_OK && good_;
  }
  // False when an option was not taken.
  bool start() {
    added_ = good_ && curl_multi_add_handle(multi_, easy_) == CURLM_OK;
    return added_;
  }
  // Goes on as far as it can; the end's code once there is one.
  bool ended(CURLcode& code) {
    int running = 0, left = 0;
    if (curl_multi_perform(multi_, &running) != CURLM_OK) {
      code = CURLE_FAILED_INIT;
      return true;
    }
    const CURLMsg* message = curl_multi_info_read(multi_, &left);
    if (message == nullptr || message->msg != CURLMSG_DONE) return false;
    code = message->data.result;
    return true;
  }
  void wait() { curl_multi_poll(multi_, nullptr, 0, kLookMilliseconds, nullptr); }
  long responseCode() const {
    long code = 0;
    curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &code);
    return code;
  }

 private:
  CURLM* multi_;
  CURL* easy_;
  bool good_ = true;
  bool added_ = false;
};

void configure(CurlHandles& curl, Transfer& transfer) {
  const std::string schemes = listedSchemes(transfer.request.schemes, ",", "");
  curl.set(CURLOPT_URL, transfer.request.address.c_str());
  curl.set(CURLOPT_PROTOCOLS_STR, schemes.c_str());
  curl.set(CURLOPT_REDIR_PROTOCOLS_STR, schemes.c_str());
  curl.set(CURLOPT_FOLLOWLOCATION, 1L);
  curl.set(CURLOPT_MAXREDIRS, kMostRedirects);
  curl.set(CURLOPT_FAILONERROR, 1L);
  curl.set(CURLOPT_USERAGENT, transfer.request.agent.c_str());
  curl.set(CURLOPT_WRITEFUNCTION, onBytes);
  curl.set(CURLOPT_WRITEDATA, &transfer);
  curl.set(CURLOPT_NOPROGRESS, 0L);
  curl.set(CURLOPT_XFERINFOFUNCTION, onProgress);
  curl.set(CURLOPT_XFERINFODATA, &transfer);
  curl.set(CURLOPT_NOSIGNAL, 1L);
  // A thread that asks for the server's number is left behind rather than waited for.
  curl.set(CURLOPT_QUICK_EXIT, 1L);
  // The connection is closed while the bounds of this transfer still hold for the farewell.
  curl.set(CURLOPT_FORBID_REUSE, 1L);
  curl.set(CURLOPT_SERVER_RESPONSE_TIMEOUT, kServerReplySeconds);
  // Where nobody can be asked whether a certificate was revoked, it counts.
  curl.set(CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_REVOKE_BEST_EFFORT));
}

TransferResult failure(std::string reason) { return {TransferStatus::failed, std::move(reason)}; }

std::string httpReason(long code) {
  if (code == kHttpNotFound || code == kHttpGone) return "The server has no such file.";
  if (code == kHttpAuthenticate || code == kHttpForbidden)
    return "The server doesn't give this file to everybody.";
  return "The server answered with the error " + std::to_string(code) + ".";
}

std::string reasonOf(CURLcode code, const Transfer& transfer, long response) {
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
      return "No server of this name was found.";
    case CURLE_COULDNT_CONNECT:
      return "The server can't be reached.";
    case CURLE_HTTP_RETURNED_ERROR:
      return httpReason(response);
    case CURLE_REMOTE_FILE_NOT_FOUND:
    case CURLE_FTP_COULDNT_RETR_FILE:
    case CURLE_REMOTE_ACCESS_DENIED:
      return "The server has no such file.";
    case CURLE_LOGIN_DENIED:
      return "The server wants another name or password.";
    case CURLE_TOO_MANY_REDIRECTS:
      return "The server leads on from one address to the next.";
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:  // our own address was looked at before
      return "The address leads to something other than " +
             listedSchemes(transfer.request.schemes, ", ", ".");
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
      return "The server has broken off.";
    case CURLE_PEER_FAILED_VERIFICATION:
      return "The server can't prove that it is the one of this name.";
    case CURLE_OPERATION_TIMEDOUT:
      return "The server doesn't answer.";
    default:
      return std::string(curl_easy_strerror(code)) + ".";
  }
}

TransferResult resultOf(CURLcode code, const Transfer& transfer, long response) {
  if (code == CURLE_OK) return {TransferStatus::done, {}};
  if (code == CURLE_ABORTED_BY_CALLBACK) return {TransferStatus::cancelled, {}};
  if (transfer.refused) return {TransferStatus::refused, {}};
  if (transfer.tooLarge) return failure("The answer is longer than it may be.");
  return failure(reasonOf(code, transfer, response));
}

// Whether more time has passed than there was. In milliseconds: an endless patience has no finer unit.
bool isOver(Clock::time_point since, std::chrono::milliseconds patience) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - since) > patience;
}

}  // namespace

float TransferState::fractionDone() const {
  const auto all = static_cast<double>(expected);
  return all > 0 ? static_cast<float>(std::min(static_cast<double>(received) / all, 1.0)) : 0.0f;
}

TransferResult transfer(const TransferRequest& request, const TransferSink& sink, TransferState& state) {
  if (const std::string problem = addressProblem(request.address, request.schemes); !problem.empty()) {
    return failure(problem);
  }
  Transfer own{request, sink, state};
  CurlHandles curl;  // ends first: its end may still call back
  if (curl.ready()) configure(curl, own);
  if (!curl.ready() || !curl.start()) return failure("The network can't be used.");
  const auto begun = Clock::now();
  auto lastHeard = begun;
  uint64_t heard = 0;
  CURLcode code{};
  while (!curl.ended(code)) {
    if (state.cancelled) return {TransferStatus::cancelled, {}};
    if (state.received != heard) lastHeard = Clock::now();
    heard = state.received;
    if (isOver(begun, request.patience) || isOver(lastHeard, request.silence)) {
      return failure("The server doesn't answer in time.");
    }
    curl.wait();
  }
  return resultOf(code, own, curl.responseCode());
}

}  // namespace plumetta
