// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "doc/document.h"
#include "platform/file_system.h"
#include "platform/lock_file.h"

namespace plumetta {

// What a copy of a document can't tell itself. Stands beside it as "NAME.info", a line of text each.
struct RecoveryInfo {
  std::string title;
  std::string fileName;  // kUnnamedWave for one that was never saved
  int bits = 16;
  int formatTag = kFormatPcm;
  bool kept = false;  // the person has been asked, and wants to leave it where it is
};

// A copy that a process has left which did not end in good order. Nobody else offers it meanwhile.
struct LeftCopy {
  std::string path;
  RecoveryInfo info;
  std::optional<LockFile> lock;
};

// Copies of changed documents in the program's own folder, for the case that somebody else's code takes the
// program down: WAV files of 32-bit floats. They go when the document is saved or closed, and stay when the
// program ends before that. UI thread, on which alone documents change; files are written on another one.
class RecoveryFiles {
 public:
  using Documents = std::vector<std::unique_ptr<CPlumettaDoc>>;

  RecoveryFiles(FileSystem& files, std::string folder);
  // Gives up what is being written.
  ~RecoveryFiles();
  RecoveryFiles(const RecoveryFiles&) = delete;
  RecoveryFiles& operator=(const RecoveryFiles&) = delete;

  // Removes the copies of documents without changes.
  void dropSaved(const Documents& documents);
  // The same, and begins to write one that is out of date. Called about once a second, it leaves no copy
  // older than a minute.
  void follow(const Documents& documents);
  // Comes back when every changed document has a copy of its present state, or none can be made.
  void bringUpToDate(const Documents& documents);
  // The document closes.
  void forget(const CPlumettaDoc& document);
  // The title of a document that can't be copied, once; empty when there is none.
  std::string takeFailure() { return std::exchange(failure_, {}); }

  // Copies of programs that have ended, oldest first; none that is to be left alone.
  std::vector<LeftCopy> leftCopies();
  // From now on nobody is asked about it.
  void keep(LeftCopy& copy);
  // It stands for this document from now on.
  void adopt(LeftCopy copy, const CPlumettaDoc& document);

 private:
  struct Entry;
  struct Job;

  void collect();
  bool beginStale(const Documents& documents, std::chrono::seconds youngest);
  void begin(const CPlumettaDoc& document, Entry& entry);
  Entry* entryOf(const CPlumettaDoc& document);
  Entry* makeEntry(const CPlumettaDoc& document);
  void remove(Entry& entry);

  FileSystem& files_;
  std::string folder_;
  std::vector<std::unique_ptr<Entry>> entries_;
  std::unique_ptr<Job> job_;
  std::string failure_;
};

}  // namespace plumetta
