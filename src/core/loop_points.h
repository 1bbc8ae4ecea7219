// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace plumetta {

// One loop, in the six fields of the WAV "smpl" chunk. Positions are frames, both ends included.
struct LoopRecord {
  uint32_t cuePointId = 0;
  uint32_t type = 0;  // 0 forward, 1 alternating (forward/backward)
  int32_t start = 0;
  int32_t end = 0;
  uint32_t fraction = 0;
  uint32_t playCount = 0;
};

// The sampler header of the "smpl" chunk: kept so that a file's own values are written back.
struct SamplerHeader {
  uint32_t manufacturer = 0;
  uint32_t product = 0;
  uint32_t samplePeriod = 0;
  uint32_t midiUnityNote = 0;
  uint32_t midiPitchFraction = 0;
  uint32_t smpteFormat = 0;
  uint32_t smpteOffset = 0;
  uint32_t samplerData = 0;
};

// The loops of a buffer. Editing goes through loop 0; only a loaded file brings more. Indices out of range
// are ignored, read as an empty record.
class CLoopPoints {
 public:
  static constexpr int kMaxLoops = 10;

  void clear() { count_ = 0; }
  bool hasLoops() const { return count_ > 0; }
  int count() const { return count_; }

  // Loop 0 from the smaller to the larger of the two frames; created when there is none yet.
  void setLoop(int32_t a, int32_t b);
  // Appends a loop as it stands in a file; false when all ten places are taken.
  bool add(const LoopRecord& loop);

  LoopRecord loop(int i) const;
  void setLoopRecord(int i, int32_t start, int32_t end, uint32_t type, uint32_t playCount);
  int32_t start(int i) const { return loop(i).start; }
  int32_t end(int i) const { return loop(i).end; }
  void setStart(int i, int32_t frame);
  void setEnd(int i, int32_t frame);

  // Gives `target` every loop that lies wholly in [from, to], relative to `from`, through its loop 0.
  void copyRangeTo(CLoopPoints& target, int32_t from, int32_t to) const;
  // Follows an insertion of `length` frames at `position`: ends behind it move up.
  void adjustForInsert(int32_t position, int32_t length);
  // Follows the removal of the frames between `from` and `to`, both included.
  void adjustForDelete(int32_t from, int32_t to);
  // Divides every position by `ratio`, after resampling.
  void scale(double ratio);
  // Moves what lies above `last` down to it, and what lies below 0 up to 0.
  void clamp(int32_t last);

  SamplerHeader header;

 private:
  bool valid(int i) const { return i >= 0 && i < count_; }

  int count_ = 0;
  std::array<LoopRecord, kMaxLoops> loops_{};
};

}  // namespace plumetta
