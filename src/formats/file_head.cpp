// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "formats/format.h"
#include "formats/mp3_frame_scan.h"

namespace plumetta {
namespace {

std::vector<uint8_t> firstBytes(File& file) {
  std::vector<uint8_t> bytes(FileHead::kBytes);
  std::error_code error;
  bytes.resize(file.read(bytes.data(), bytes.size(), error));
  return bytes;
}

}  // namespace

FileHead FileHead::of(File& file, std::string extension) {
  FileHead head{firstBytes(file), file.size(), std::move(extension)};
  const size_t tag = id3TagBytes(head.bytes);
  if (tag > 0 && tag < head.size && !file.seek(tag)) {
    head.behindTag = firstBytes(file);
    head.tagBytes = tag;
  }
  file.seek(0);  // who can't is found out by the reader
  return head;
}

bool FileHead::isAt(const std::vector<uint8_t>& bytes, size_t offset, std::string_view text) {
  return bytes.size() >= offset + text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char wanted, uint8_t present) { return static_cast<uint8_t>(wanted) == present; });
}

}  // namespace plumetta
