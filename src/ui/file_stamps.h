// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>

#include "doc/document.h"

namespace plumetta {

// What the files of documents looked like when these were read or written last, so that what another program
// has put there since isn't overwritten unasked.
class FileStamps {
 public:
  // The document has just been read from its file, or written to it.
  void take(const CPlumettaDoc& doc);
  void forget(const CPlumettaDoc& doc) { stamps_.erase(&doc); }
  // Whether its file is a different one by now. One that is gone is none.
  bool changed(const CPlumettaDoc& doc) const;

 private:
  struct Stamp {
    std::time_t time;
    uint64_t bytes;

    bool operator==(const Stamp&) const = default;
  };
  static std::optional<Stamp> stampOf(const std::string& path);

  std::map<const CPlumettaDoc*, Stamp> stamps_;
};

}  // namespace plumetta
