// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/batch_log.h"

#include <algorithm>

namespace plumetta {
namespace batch_text {

std::string unableToSave(const std::string& path) { return "\tUnable to save file " + path + "\r\n"; }

std::string savedAs(const std::string& name) { return "\tSaved as " + name + "\r\n"; }

}  // namespace batch_text

void OrderedLog::append(size_t turn, std::string_view text) {
  const std::lock_guard lock(mutex_);
  if (turn == turn_) {
    sink_(text);
  } else {
    waiting_[turn].text += text;
  }
}

void OrderedLog::finish(size_t turn) {
  const std::lock_guard lock(mutex_);
  waiting_[turn].finished = true;
  while (!waiting_.empty() && waiting_.begin()->first == turn_ && waiting_.begin()->second.finished) {
    waiting_.erase(waiting_.begin());
    ++turn_;
    const auto next = waiting_.find(turn_);
    if (next == waiting_.end() || next->second.text.empty()) continue;
    sink_(next->second.text);
    next->second.text.clear();
  }
}

namespace {

// The lines of a log, each with its end.
std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const size_t end = text.find("\r\n");
    const size_t length = end == std::string_view::npos ? text.size() : end + 2;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

// The stretches of a log without its banner, each from a file's name to what became of it.
std::vector<std::string> stretchesOf(std::string_view text) {
  std::vector<std::string> stretches;
  for (const std::string_view line : linesOf(text)) {
    if (line.starts_with('\t') && !stretches.empty()) {
      stretches.back() += line;
    } else {
      stretches.emplace_back(line);
    }
  }
  return stretches;
}

void count(const std::string& stretch, BatchSummary& summary) {
  using namespace batch_text;
  const auto has = [&](const char* text) { return stretch.find(text) != std::string::npos; };
  if (stretch.ends_with(kUnsupported)) {
    ++summary.unsupported;
  } else if (stretch.ends_with(kNotApplied)) {
    ++summary.notApplied;
  } else if (stretch.ends_with(kCancelled)) {
    ++summary.cancelled;
  } else if (stretch.ends_with(kWalkedAlready)) {
    ++summary.links;
  } else if (!stretch.ends_with(kApplied)) {
    ++summary.unfinished;
  } else if (has("\tUnable to save file ")) {
    ++summary.notSaved;
  } else {
    ++summary.done;
  }
}

}  // namespace

BatchSummary& BatchSummary::operator+=(const BatchSummary& other) {
  done += other.done;
  unsupported += other.unsupported;
  notSaved += other.notSaved;
  notApplied += other.notApplied;
  cancelled += other.cancelled;
  links += other.links;
  unfinished += other.unfinished;
  closed = closed && other.closed;
  return *this;
}

MergedBatchLog mergeBatchLogs(const std::vector<std::string>& logs) {
  MergedBatchLog merged;
  std::vector<std::vector<std::string>> parts;
  size_t longest = 0;
  for (std::string_view log : logs) {
    BatchSummary& summary = merged.parts.emplace_back();
    summary.closed = log.ends_with(batch_text::kBanner);
    if (summary.closed) log.remove_suffix(std::string_view(batch_text::kBanner).size());
    for (const auto& stretch : parts.emplace_back(stretchesOf(log))) count(stretch, summary);
    longest = std::max(longest, parts.back().size());
  }
  bool allClosed = true;
  for (size_t part = 0; part < parts.size(); ++part) {
    // Files are dealt in turn, so a later part never has more than an earlier one, and none lacks two.
    const bool overtaken = std::any_of(parts.begin() + static_cast<std::ptrdiff_t>(part), parts.end(),
                                       [&](const auto& later) { return later.size() > parts[part].size(); });
    if (overtaken || parts[part].size() + 1 < longest) merged.endedTooSoon.push_back(part);
    allClosed = allClosed && merged.parts[part].closed;
  }
  for (size_t turn = 0; turn < longest; ++turn) {
    for (const auto& part : parts) {
      if (turn < part.size()) merged.text += part[turn];
    }
  }
  if (allClosed) merged.text += batch_text::kBanner;
  return merged;
}

}  // namespace plumetta
