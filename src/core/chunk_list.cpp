// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/chunk_list.h"

#include <algorithm>

namespace plumetta {

int CChunkList::add(std::string_view id, std::span<const uint8_t> data) {
  Chunk chunk;
  std::copy_n(id.begin(), std::min<size_t>(id.size(), chunk.id.size()), chunk.id.begin());
  chunk.data.assign(data.begin(), data.end());
  chunks_.push_back(std::move(chunk));
  return count() - 1;
}

}  // namespace plumetta
