// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/vorbis_library.h"

#include "platform/codec_names.h"

namespace plumetta {

bool VorbisLibrary::load() {
  return library_.openOfSystem(codecNames().vorbis) && library_.resolve("ov_open_callbacks", openCallbacks) &&
         library_.resolve("ov_comment", comment) && library_.resolve("ov_info", info) &&
         library_.resolve("ov_pcm_total", pcmTotal) && library_.resolve("ov_read", read) &&
         library_.resolve("ov_clear", clear);
}

}  // namespace plumetta
