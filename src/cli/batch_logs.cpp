// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/batch_logs.h"

#include <algorithm>

#include "batch/batch_log.h"
#include "cli/call.h"
#include "platform/paths.h"

namespace plumetta {

// ---- Writing --------------------------------------------------------------------------------------------

bool BatchLogFile::open(FileSystem& files, const std::string& path) {
  std::error_code error;
  if (files.kind(path) == FileKind::special) {
    file_ = files.openSpecialForWriting(path, error);
    return take(error);
  }
  if (files.kind(path) == FileKind::regular) {
    error = files.checkWritable(path);
    if (!error) error = files.remove(path);
    if (error) return take(error);
  }
  file_ = files.createNew(path, error);
  if (file_) error = files.adoptAccess(path, {});  // those of any new file
  return take(error);
}

void BatchLogFile::write(std::string_view text) {
  if (file_ && reason_.empty()) take(file_->write(text.data(), text.size()));
}

bool BatchLogFile::close() {
  if (file_) take(file_->close());
  return reason_.empty();
}

bool BatchLogFile::take(std::error_code error) {
  if (error && reason_.empty()) reason_ = error.message();
  return reason_.empty();
}

// ---- Merging --------------------------------------------------------------------------------------------

namespace {

std::optional<std::string> textOf(const std::string& path, Prompter& prompter) {
  std::error_code error;
  const auto file = nativeFileSystem().openForReading(path, error);
  std::string text;
  if (file) {
    text.resize(file->size());
    text.resize(file->read(text.data(), text.size(), error));
  }
  if (!error) return text;
  prompter.message("Unable to open " + path + "\n" + error.message());
  return std::nullopt;
}

std::string describe(const BatchSummary& summary) {
  std::string text = std::to_string(summary.entries()) + " files, " + std::to_string(summary.done) + " done";
  const auto add = [&](size_t count, const char* what) {
    if (count > 0) text += ", " + std::to_string(count) + " " + what;
  };
  add(summary.unsupported, "not supported");
  add(summary.notSaved, "not saved");
  add(summary.notApplied, "not changed");
  add(summary.cancelled, "cancelled");
  add(summary.links, "links left out");
  add(summary.unfinished, "begun and not finished");
  return text;
}

// What a person needs to know of each part, and whether all of them are whole.
bool tellParts(const MergedBatchLog& merged, const std::vector<std::string>& paths, Prompter& prompter) {
  bool whole = true;
  BatchSummary all;
  for (size_t i = 0; i < paths.size(); ++i) {
    const BatchSummary& part = merged.parts[i];
    const bool endedTooSoon = std::ranges::find(merged.endedTooSoon, i) != merged.endedTooSoon.end();
    const char* lack = !part.closed ? ": not finished" : endedTooSoon ? ": stopped before its end" : "";
    prompter.message(paths[i] + ": " + describe(part) + lack);
    whole = whole && *lack == '\0';
    all += part;
  }
  prompter.message("All: " + describe(all) + (whole ? "" : ": the batch is not complete"));
  return whole;
}

}  // namespace

int mergeLogs(WordReader& words, Prompter& prompter) {
  std::vector<std::string> paths, logs;
  while (!words.atEnd()) paths.push_back(absolutePath(words.take()));
  if (paths.empty()) return wrongCall("batch: --merge-logs wants the logs of all parts, in their order");
  for (const std::string& path : paths) {
    auto text = textOf(path, prompter);
    if (!text) return kFileError;
    logs.push_back(std::move(*text));
  }
  const MergedBatchLog merged = mergeBatchLogs(logs);
  if (!print(merged.text)) return kFileError;
  return tellParts(merged, paths, prompter) ? kAllDone : kRefused;
}

}  // namespace plumetta
