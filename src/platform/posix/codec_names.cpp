// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/codec_names.h"

namespace plumetta {

// The number behind the name is the version of the interface that our declarations describe.
const CodecNames& codecNames() {
  static constexpr CodecNames names{"libvorbisfile.so.3", "libwavpack.so.1", "libmp3lame.so.0"};
  return names;
}

}  // namespace plumetta
