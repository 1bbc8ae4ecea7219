// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace plumetta {

// The chunk that names the program's version: every WAV file that is written ends with it.
inline constexpr std::string_view kVersionChunkId = "ETTA";

struct Chunk {
  std::array<char, 4> id{};
  std::vector<uint8_t> data;

  bool is(std::string_view name) const { return std::string_view(id.data(), id.size()) == name; }
};

// Extra RIFF chunks that every WAV written from a buffer carries behind the known ones.
class CChunkList {
 public:
  // Copies at most four characters of the id and the bytes; returns the entry's index.
  int add(std::string_view id, std::span<const uint8_t> data);
  // Puts a chunk ahead of the one at `index`.
  void insert(int index, Chunk chunk) { chunks_.insert(chunks_.begin() + index, std::move(chunk)); }
  void clear() { chunks_ = {}; }
  int count() const { return static_cast<int>(chunks_.size()); }
  const Chunk& operator[](int i) const { return chunks_[static_cast<size_t>(i)]; }
  auto begin() const { return chunks_.begin(); }
  auto end() const { return chunks_.end(); }

 private:
  std::vector<Chunk> chunks_;
};

}  // namespace plumetta
