// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delete_ranges.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace plumetta {
namespace {

// Where frames stand once the ranges are gone.
class Removal {
 public:
  explicit Removal(const std::vector<FrameRange>& ranges) : ranges_(ranges) {
    int32_t sum = 0;
    for (const FrameRange& range : ranges) removedUpTo_.push_back(sum += range.length());
  }

  int32_t removed() const { return removedUpTo_.empty() ? 0 : removedUpTo_.back(); }
  // Nothing for a frame that goes.
  std::optional<int32_t> placeOf(int32_t frame) const {
    const auto behind = std::upper_bound(ranges_.begin(), ranges_.end(), frame,
                                         [](int32_t f, const FrameRange& range) { return f < range.first; });
    if (behind == ranges_.begin()) return frame;
    const auto i = static_cast<size_t>(behind - ranges_.begin() - 1);
    if (frame <= ranges_[i].last) return std::nullopt;
    return frame - removedUpTo_[i];
  }

 private:
  const std::vector<FrameRange>& ranges_;
  std::vector<int32_t> removedUpTo_;  // frames of the ranges up to each one, itself included
};

void moveSamples(CWave& wave, const std::vector<FrameRange>& ranges) {
  const auto channels = static_cast<size_t>(wave.channels());
  float* target = wave.samples();
  size_t from = 0;
  const auto keepUpTo = [&](size_t end) {
    const size_t count = (end - from) * channels;
    std::memmove(target, wave.samples() + from * channels, count * sizeof(float));
    target += count;
  };
  for (const FrameRange& range : ranges) {
    keepUpTo(static_cast<size_t>(range.first));
    from = static_cast<size_t>(range.last) + 1;
  }
  keepUpTo(static_cast<size_t>(wave.frames()));
}

void moveMarkers(CMarkerList& markers, const Removal& removal) {
  CMarkerList kept;
  for (Marker marker : markers) {
    const auto place = removal.placeOf(marker.position);
    if (!place) continue;
    marker.position = *place;
    kept.append(std::move(marker));
  }
  markers = std::move(kept);
}

// A loop that loses an end goes, and loop 0 takes all others with it.
void moveLoops(CLoopPoints& loops, const Removal& removal) {
  CLoopPoints kept = loops;
  kept.clear();
  for (int i = 0; i < loops.count(); ++i) {
    LoopRecord loop = loops.loop(i);
    const auto start = removal.placeOf(loop.start);
    const auto end = removal.placeOf(loop.end);
    if (i == 0 && !(start && end)) break;
    if (!start || !end) continue;
    loop.start = *start;
    loop.end = *end;
    kept.add(loop);
  }
  loops = kept;
}

// The first and the last point stay; an inner one that would meet them, or whose frame goes, goes.
void moveEnvelope(CVolumeEnvelope& envelope, const Removal& removal, int32_t frames) {
  envelope.setLengthField(frames);
  for (int c = 0; c < envelope.channelCount(); ++c) {
    const int last = envelope.pointCount(c) - 1;
    envelope.setPosition(last, c, frames - 1);
    for (int i = last - 1; i > 0; --i) {
      const auto place = removal.placeOf(envelope.point(i, c).position);
      if (place && *place > 0 && *place < frames - 1) {
        envelope.setPosition(i, c, *place);
      } else {
        envelope.removePoint(i, c);
      }
    }
  }
}

}  // namespace

void deleteRanges(CWave& wave, const std::vector<FrameRange>& ranges) {
  if (ranges.empty()) return;
  const Removal removal(ranges);
  const int32_t frames = wave.frames() - removal.removed();
  moveMarkers(wave.markers, removal);
  moveLoops(wave.loops, removal);
  moveEnvelope(wave.envelope, removal, frames);
  moveSamples(wave, ranges);
  wave.setLayout(wave.channels(), frames);
  wave.resize(frames, wave.channels());  // giving memory back can't lose samples
}

}  // namespace plumetta
