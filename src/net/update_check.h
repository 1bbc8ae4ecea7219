// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string>

#include "net/background_transfer.h"

namespace plumetta {

enum class UpdateState { newer, same, older, unknown };

// How the version that the server names stands to the program's own.
struct UpdateAnswer {
  UpdateState state = UpdateState::unknown;
  std::string version;  // the server's; empty when it is unknown
  std::string reason;   // why it is unknown, a sentence
};

// Asks an update server which version is the newest, in the background: "/version.txt", at most 4 KiB, within
// five seconds. The caller has the person's consent.
class UpdateCheck {
 public:
  // `agent` is what the server is told of the program.
  UpdateCheck(const std::string& server, const std::string& agent, std::string ownVersion);

  // Waits for the answer, no longer than this; whether it is there.
  bool finished(std::chrono::milliseconds patience) const { return transfer_.finished(patience); }
  // Waits for it.
  UpdateAnswer answer() const;

 private:
  std::string ownVersion_;
  std::string text_;  // what came; the thread's until it is finished
  BackgroundTransfer transfer_;
};

// What an answer of the server says.
UpdateAnswer judgeVersion(const std::string& text, const std::string& ownVersion);

}  // namespace plumetta
