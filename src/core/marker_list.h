// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace plumetta {

// A named place in the audio. Ids repeat after deletions; they only travel into files as cue point ids.
struct Marker {
  uint32_t id = 0;
  int32_t position = 0;  // frame
  std::optional<std::string> label;
};

struct MarkerHit {
  int32_t position;
  int index;
};

// The markers of a buffer, in the order of their creation. Indices out of range are ignored.
class CMarkerList {
 public:
  // False for a negative position, else appends a marker whose id is the new count.
  bool add(int32_t position, std::optional<std::string> label = std::nullopt);
  // Appends a marker as it stands, with its own id; used by readers.
  void append(Marker marker) { markers_.push_back(std::move(marker)); }
  void reserve(size_t count) { markers_.reserve(count); }
  void remove(int i);
  void clear() { markers_ = {}; }

  int count() const { return static_cast<int>(markers_.size()); }
  bool empty() const { return markers_.empty(); }
  const Marker& operator[](int i) const { return markers_[static_cast<size_t>(i)]; }
  auto begin() const { return markers_.begin(); }
  auto end() const { return markers_.end(); }

  void setPosition(int i, int32_t frame);
  void setLabel(int i, std::optional<std::string> label);

  // Appends to `target` the markers in [from, to], relative to `from`, as newly added ones.
  void copyRangeTo(CMarkerList& target, int32_t from, int32_t to) const;
  // Adds every marker of `other`, `offset` frames later.
  void addAll(const CMarkerList& other, int32_t offset);

  // The nearest marker strictly behind, or strictly before, a position; the earliest entry of equal ones.
  std::optional<MarkerHit> nextAfter(int32_t position) const;
  std::optional<MarkerHit> previousBefore(int32_t position) const;

  void adjustForInsert(int32_t position, int32_t length);
  void adjustForDelete(int32_t from, int32_t to);
  void scale(double ratio);
  void clamp(int32_t last);

 private:
  bool valid(int i) const { return i >= 0 && i < count(); }

  std::vector<Marker> markers_;
};

}  // namespace plumetta
