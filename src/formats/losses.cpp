// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/losses.h"

#include <algorithm>

namespace plumetta {
namespace {

void tellBeyond(std::vector<std::string>& lost, const char* what, int present, int limit) {
  if (present <= limit) return;
  lost.push_back(limit == 0 ? std::string(what) : what + (" beyond " + std::to_string(limit)));
}

}  // namespace

std::vector<std::string> annotationLosses(const CWave& wave, AnnotationLimits limits) {
  std::vector<std::string> lost;
  tellBeyond(lost, "markers", wave.markers.count(), limits.markers);
  tellBeyond(lost, "loops", wave.loops.count(), limits.loops);
  if (wave.envelope.active()) lost.push_back("volume envelope");
  const bool foreign = std::any_of(wave.extraChunks.begin(), wave.extraChunks.end(),
                                   [](const Chunk& chunk) { return !chunk.is(kVersionChunkId); });
  if (foreign) lost.push_back("chunks of other programs");
  return lost;
}

}  // namespace plumetta
