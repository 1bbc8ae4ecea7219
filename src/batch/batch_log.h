// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace plumetta {

// The texts of the log; a file's stretch begins with its name alone. Each is followed by the next one on the
// same line unless it ends that line.
namespace batch_text {
inline constexpr const char* kUnsupported = "\tFormat not supported : file ignored\r\n";
inline constexpr const char* kExtracted = "\tExtract ok";
inline constexpr const char* kApplied = "\tEffect ok\r\n";
inline constexpr const char* kNotApplied = "\tUnable to apply the function : file ignored\r\n";
inline constexpr const char* kCancelled = "\tCancelled : file ignored\r\n";
inline constexpr const char* kWalkedAlready = "\tFolder walked already : link ignored\r\n";
inline constexpr const char* kBanner =
    "\r\n\r\n*******************************\r\nBatch processing "
    "finished\r\n*******************************\r\n";
std::string unableToSave(const std::string& path);
std::string savedAs(const std::string& name);
}  // namespace batch_text

// Puts what several threads write at the same time into the order of the entries, each text as early as that
// order lets it out. Any thread; the sink is called by one at a time.
class OrderedLog {
 public:
  using Sink = std::function<void(std::string_view)>;

  explicit OrderedLog(Sink sink) : sink_(std::move(sink)) {}

  // Turns are counted from 0. None is left out, and none gets a text after it has been finished.
  void append(size_t turn, std::string_view text);
  void finish(size_t turn);

 private:
  struct Waiting {
    std::string text;
    bool finished = false;
  };

  Sink sink_;
  std::mutex mutex_;
  size_t turn_ = 0;  // whose texts go out at once
  std::map<size_t, Waiting> waiting_;
};

// What became of the files of one log.
struct BatchSummary {
  size_t done = 0, unsupported = 0, notSaved = 0, notApplied = 0, cancelled = 0, links = 0;
  size_t unfinished = 0;  // begun, but the log ends before it tells how that went
  bool closed = false;    // the banner was written

  BatchSummary& operator+=(const BatchSummary& other);
  size_t entries() const {
    return done + unsupported + notSaved + notApplied + cancelled + links + unfinished;
  }
};

struct MergedBatchLog {
  std::string text;                  // as one run over all files would have written it
  std::vector<BatchSummary> parts;   // in the order of the logs
  std::vector<size_t> endedTooSoon;  // parts that others have overtaken: files are missing
};

// Puts the logs of shards 0, 1 ... together.
MergedBatchLog mergeBatchLogs(const std::vector<std::string>& logs);

}  // namespace plumetta
