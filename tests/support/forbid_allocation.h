// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// While one of these lives, its thread aborts the program when it allocates or frees through new and delete.
// The program has to hold forbid_allocation.cpp.
class ForbidAllocation {
 public:
  ForbidAllocation();
  ~ForbidAllocation();
  ForbidAllocation(const ForbidAllocation&) = delete;
  ForbidAllocation& operator=(const ForbidAllocation&) = delete;
};

}  // namespace plumetta
