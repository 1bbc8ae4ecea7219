// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/regions.h"

#include <algorithm>

namespace plumetta {
namespace {

// Two regions that change places and the stretch between them; all bounds are frames, both ends included.
struct Exchange {
  int32_t firstStart, firstEnd, secondStart, secondEnd;

  int32_t firstLength() const { return firstEnd - firstStart + 1; }
  int32_t secondLength() const { return secondEnd - secondStart + 1; }
  // Where the first region begins afterwards.
  int32_t firstGoesTo() const { return secondEnd - firstLength() + 1; }

  // The place of a frame afterwards.
  int32_t map(int32_t frame) const {
    if (frame < firstStart || frame > secondEnd) return frame;
    if (frame <= firstEnd) return frame - firstStart + firstGoesTo();
    if (frame >= secondStart) return frame - secondStart + firstStart;
    return frame - firstLength() + secondLength();
  }
};

int32_t regionEnd(const CWave& wave, int32_t start) {
  const auto next = wave.markers.nextAfter(start);
  return next ? std::min(next->position, wave.frames() - 1) : wave.frames() - 1;
}

void exchangeSamples(CWave& wave, const Exchange& exchange) {
  const int64_t channels = wave.channels();
  float* first = wave.samples() + exchange.firstStart * channels;
  float* between = wave.samples() + (static_cast<int64_t>(exchange.firstEnd) + 1) * channels;
  float* second = wave.samples() + exchange.secondStart * channels;
  float* end = wave.samples() + (static_cast<int64_t>(exchange.secondEnd) + 1) * channels;
  float* firstNow = std::rotate(first, second, end);  // second, first, between
  std::rotate(firstNow, firstNow + (between - first), end);
}

void exchangeAnnotations(CWave& wave, const Exchange& exchange) {
  for (int i = 0; i < wave.markers.count(); ++i) {
    const int32_t at = wave.markers[i].position;
    // A marker that ends a region goes on ending whatever region stands there now.
    if (at == exchange.secondEnd && at != exchange.secondStart) continue;
    const bool endsFirst = at == exchange.firstEnd && at != exchange.firstStart;
    wave.markers.setPosition(
        i, endsFirst ? exchange.firstStart + exchange.secondLength() - 1 : exchange.map(at));
  }
  for (const int32_t start : {exchange.firstStart, exchange.firstGoesTo()}) {
    const bool marked = std::any_of(wave.markers.begin(), wave.markers.end(),
                                    [&](const Marker& m) { return m.position == start; });
    if (!marked) wave.markers.add(start);
  }
  for (int i = 0; i < wave.loops.count(); ++i) {
    const int32_t start = wave.loops.start(i);
    const int32_t end = wave.loops.end(i);
    // A loop moves only when all of it moves together.
    if (exchange.map(end) - exchange.map(start) != end - start) continue;
    wave.loops.setStart(i, exchange.map(start));
    wave.loops.setEnd(i, exchange.map(end));
  }
}

}  // namespace

std::vector<int32_t> regionBoundaries(const CWave& wave) {
  std::vector<int32_t> positions{0, wave.frames() - 1};
  for (const Marker& marker : wave.markers) positions.push_back(marker.position);
  std::sort(positions.begin(), positions.end());
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  std::erase_if(positions, [&](int32_t p) { return p < 0 || p >= wave.frames(); });
  return positions;
}

void swapRegions(CWave& wave, int32_t a, int32_t b) {
  if (a > b) std::swap(a, b);
  const int32_t last = wave.frames() - 1;
  if (a == b || a < 0 || b >= last || !wave.allActive()) return;
  Exchange exchange{a, std::min(regionEnd(wave, a), b), b, regionEnd(wave, b)};
  // Neighbours share the second one's first frame; it moves with the second.
  if (exchange.firstEnd == b) --exchange.firstEnd;
  exchangeSamples(wave, exchange);
  exchangeAnnotations(wave, exchange);
}

void scrambleRegions(CWave& wave, int count, const std::function<uint32_t()>& random) {
  const auto pick = [&] {
    return wave.markers[static_cast<int>(random() % static_cast<uint32_t>(wave.markers.count()))].position;
  };
  for (int i = 0; i < count && !wave.markers.empty(); ++i) {
    const int32_t a = pick();
    swapRegions(wave, a, pick());
  }
}

}  // namespace plumetta
