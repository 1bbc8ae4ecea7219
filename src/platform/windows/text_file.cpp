// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/text_file.h"

namespace plumetta {

const std::string_view kTextLineEnd = "\r\n";

}  // namespace plumetta
