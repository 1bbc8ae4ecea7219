// SPDX-License-Identifier: GPL-3.0-or-later
#include "net/update_check.h"

#include <utility>

#include "net/version_number.h"

namespace plumetta {
namespace {

constexpr uint64_t kMostBytes = 4096;
constexpr std::chrono::milliseconds kPatience{5000};

TransferRequest versionRequest(const std::string& server, const std::string& agent) {
  TransferRequest request;
  request.address = addressOnServer(server, "/version.txt");
  request.schemes = NetSchemes::web;
  request.agent = agent;
  request.mostBytes = kMostBytes;
  request.patience = kPatience;
  return request;
}

}  // namespace

UpdateCheck::UpdateCheck(const std::string& server, const std::string& agent, std::string ownVersion)
    : ownVersion_(std::move(ownVersion)),
      transfer_(versionRequest(server, agent), [this](const char* bytes, size_t count) {
        text_.append(bytes, count);
        return true;
      }) {}

UpdateAnswer UpdateCheck::answer() const {
  const TransferResult& result = transfer_.result();
  if (result.status != TransferStatus::done) return {UpdateState::unknown, {}, result.reason};
  return judgeVersion(text_, ownVersion_);
}

UpdateAnswer judgeVersion(const std::string& text, const std::string& ownVersion) {
  const auto newest = VersionNumber::parse(text);
  const auto own = VersionNumber::parse(ownVersion);
  if (!newest || !own) return {UpdateState::unknown, {}, "The server's answer is no version."};
  const auto order = *newest <=> *own;
  const auto state = order > 0 ? UpdateState::newer : order < 0 ? UpdateState::older : UpdateState::same;
  return {state, newest->text(), {}};
}

}  // namespace plumetta
