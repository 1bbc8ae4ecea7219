// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "cli/arguments.h"
#include "core/prompter.h"
#include "platform/file_system.h"

namespace plumetta {

// A log on the disk that grows with the batch, so that it can be followed and tells how far a run came that
// was killed.
class BatchLogFile {
 public:
  // In the place of an older one. False, with a reason, when it can't be made.
  bool open(FileSystem& files, const std::string& path);
  void write(std::string_view text);
  // False when not everything is in the file. One that was never opened is closed.
  bool close();
  // Of the first failure.
  const std::string& reason() const { return reason_; }

 private:
  bool take(std::error_code error);

  std::unique_ptr<File> file_;
  std::string reason_;
};

// `batch --merge-logs LOG...`: prints the log of the whole batch, and a summary of its parts on standard
// error. The exit status.
int mergeLogs(WordReader& words, Prompter& prompter);

}  // namespace plumetta
