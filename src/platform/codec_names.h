// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace plumetta {

// The files of the codec libraries that are loaded at run time, as `SharedLibrary::openOfSystem` takes them.
struct CodecNames {
  const char* vorbis;
  const char* wavpack;
  const char* mp3Encoder;
};

const CodecNames& codecNames();

}  // namespace plumetta
