// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/codec_names.h"

namespace plumetta {

const CodecNames& codecNames() {
  static constexpr CodecNames names{"vorbis.dll", "wavpackdll.dll", "lame_enc.dll"};
  return names;
}

}  // namespace plumetta
