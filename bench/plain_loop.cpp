// SPDX-License-Identifier: GPL-3.0-or-later
// plain_loop IN OUT: what a batch comes down to, without one: loads, normalizes and saves each file of a
// folder.
#include <cstdio>

#include "dsp/amplitude.h"
#include "formats/wav_reader.h"
#include "formats/wav_writer.h"
#include "platform/paths.h"

int main(int argc, char** argv) {
  using namespace plumetta;
  if (argc != 3) return 2;
  FileSystem& files = nativeFileSystem();
  files.makeFolders(argv[2]);
  for (const std::string& name : files.list(argv[1])) {
    CWave wave;
    const bool loaded = loadWav(files, joinPath(argv[1], name), wave).status == LoadStatus::loaded;
    if (loaded) normalize(wave, {0, wave.frames() - 1}, -1.0);
    if (loaded && saveWav(files, joinPath(argv[2], name), wave, SyncToDisk::no).saved) continue;
    std::fprintf(stderr, "%s failed\n", name.c_str());
    return 1;
  }
  return 0;
}
