// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace plumetta {

// Leaves an object where it is until the process ends, beyond the destructors of statics: some thread that
// nobody can end may still reach it. UI thread.
template <class T>
void keepForGood(std::unique_ptr<T> object) {
  static auto* const kept = std::make_unique<std::vector<std::unique_ptr<T>>>().release();
  kept->push_back(std::move(object));
}

}  // namespace plumetta
