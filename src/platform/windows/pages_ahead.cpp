// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/pages_ahead.h"

namespace plumetta {

// Windows has no call that fills committed memory ahead of its use.
PagesAhead::PagesAhead(void*, size_t) {}
PagesAhead::~PagesAhead() = default;

}  // namespace plumetta
