// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace plumetta {

struct Chunk {
  std::array<char, 4> id{};
  std::vector<uint8_t> data;
};

// Extra RIFF chunks that every WAV written from a buffer carries behind the known ones.
class CChunkList {
 public:
  // Copies at most four characters of the id and the bytes; returns the entry's index.
  int add(std::string_view id, std::span<const uint8_t> data);
  void clear() { chunks_ = {}; }
  int count() const { return static_cast<int>(chunks_.size()); }
  auto begin() const { return chunks_.begin(); }
  auto end() const { return chunks_.end(); }

 private:
  std::vector<Chunk> chunks_;
};

}  // namespace plumetta
