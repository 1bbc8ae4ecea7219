// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/loop_points.h"

#include <algorithm>

namespace plumetta {

void CLoopPoints::setLoop(int32_t a, int32_t b) {
  if (count_ == 0) {
    loops_[0] = LoopRecord{};
    count_ = 1;
    header.midiUnityNote = 60;
  }
  loops_[0].start = std::min(a, b);
  loops_[0].end = std::max(a, b);
}

bool CLoopPoints::add(const LoopRecord& loop) {
  if (count_ == kMaxLoops) return false;
  loops_[count_++] = loop;
  return true;
}

LoopRecord CLoopPoints::loop(int i) const { return valid(i) ? loops_[i] : LoopRecord{}; }

void CLoopPoints::setLoopRecord(int i, int32_t start, int32_t end, uint32_t type, uint32_t playCount) {
  if (!valid(i)) return;
  loops_[i].start = start;
  loops_[i].end = end;
  loops_[i].type = type;
  loops_[i].playCount = playCount;
}

void CLoopPoints::setStart(int i, int32_t frame) {
  if (valid(i)) loops_[i].start = frame;
}

void CLoopPoints::setEnd(int i, int32_t frame) {
  if (valid(i)) loops_[i].end = frame;
}

void CLoopPoints::copyRangeTo(CLoopPoints& target, int32_t from, int32_t to) const {
  for (int i = 0; i < count_; ++i) {
    const LoopRecord& own = loops_[i];
    if (own.start < from || own.start > to || own.end < from || own.end > to) continue;
    target.setLoop(own.start - from, own.end - from);
    LoopRecord& copy = target.loops_[0];
    copy.cuePointId = own.cuePointId;
    copy.type = own.type;
    copy.fraction = own.fraction;
    copy.playCount = own.playCount;
    target.header.midiUnityNote = header.midiUnityNote;
  }
}

void CLoopPoints::adjustForInsert(int32_t position, int32_t length) {
  for (int i = 0; i < count_; ++i) {
    if (loops_[i].start > position) loops_[i].start += length;
    if (loops_[i].end > position) loops_[i].end += length;
  }
}

void CLoopPoints::adjustForDelete(int32_t from, int32_t to) {
  const int32_t first = std::min(from, to);
  const int32_t last = std::max(from, to);
  const int32_t removed = last - first + 1;
  // Loop 0 decides for the list: a loop whose start or end is cut away takes the whole list with it. Further
  // loops of a file follow by the same rule, each for itself.
  int kept = 0;
  for (int i = 0; i < count_; ++i) {
    LoopRecord loop = loops_[i];
    const bool startCut = loop.start >= first && loop.start <= last;
    const bool endCut = loop.end >= first && loop.end <= last;
    if (startCut || endCut) {
      if (i == 0) return clear();
      continue;
    }
    if (loop.start > last) loop.start -= removed;
    if (loop.end > last) loop.end -= removed;
    loops_[kept++] = loop;
  }
  count_ = kept;
}

void CLoopPoints::scale(double ratio) {
  for (int i = 0; i < count_; ++i) {
    loops_[i].start = static_cast<int32_t>(loops_[i].start / ratio);
    loops_[i].end = static_cast<int32_t>(loops_[i].end / ratio);
  }
}

void CLoopPoints::clamp(int32_t last) {
  for (int i = 0; i < count_; ++i) {
    loops_[i].start = std::clamp(loops_[i].start, 0, std::max(last, 0));
    loops_[i].end = std::clamp(loops_[i].end, 0, std::max(last, 0));
  }
}

}  // namespace plumetta
