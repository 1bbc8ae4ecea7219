// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/marker_list.h"

#include <algorithm>

namespace plumetta {

bool CMarkerList::add(int32_t position, std::optional<std::string> label) {
  if (position < 0) return false;
  markers_.push_back({static_cast<uint32_t>(markers_.size() + 1), position, std::move(label)});
  return true;
}

void CMarkerList::remove(int i) {
  if (valid(i)) markers_.erase(markers_.begin() + i);
}

void CMarkerList::setPosition(int i, int32_t frame) {
  if (valid(i)) markers_[static_cast<size_t>(i)].position = frame;
}

void CMarkerList::setLabel(int i, std::optional<std::string> label) {
  if (valid(i)) markers_[static_cast<size_t>(i)].label = std::move(label);
}

void CMarkerList::copyRangeTo(CMarkerList& target, int32_t from, int32_t to) const {
  for (const Marker& marker : markers_) {
    if (marker.position >= from && marker.position <= to) target.add(marker.position - from, marker.label);
  }
}

void CMarkerList::addAll(const CMarkerList& other, int32_t offset) {
  const size_t count = other.markers_.size();  // `other` may be this list
  for (size_t i = 0; i < count; ++i) add(other.markers_[i].position + offset, other.markers_[i].label);
}

std::optional<MarkerHit> CMarkerList::nextAfter(int32_t position) const {
  std::optional<MarkerHit> best;
  for (int i = 0; i < count(); ++i) {
    const int32_t at = (*this)[i].position;
    if (at > position && (!best || at < best->position)) best = MarkerHit{at, i};
  }
  return best;
}

std::optional<MarkerHit> CMarkerList::previousBefore(int32_t position) const {
  std::optional<MarkerHit> best;
  for (int i = 0; i < count(); ++i) {
    const int32_t at = (*this)[i].position;
    if (at < position && (!best || at > best->position)) best = MarkerHit{at, i};
  }
  return best;
}

void CMarkerList::adjustForInsert(int32_t position, int32_t length) {
  for (Marker& marker : markers_) {
    if (marker.position > position) marker.position += length;
  }
}

void CMarkerList::adjustForDelete(int32_t from, int32_t to) {
  const int32_t first = std::min(from, to);
  const int32_t last = std::max(from, to);
  std::erase_if(markers_, [&](const Marker& m) { return m.position >= first && m.position <= last; });
  for (Marker& marker : markers_) {
    if (marker.position > last) marker.position -= last - first + 1;
  }
}

void CMarkerList::scale(double ratio) {
  for (Marker& marker : markers_) marker.position = static_cast<int32_t>(marker.position / ratio);
}

void CMarkerList::clamp(int32_t last) {
  for (Marker& marker : markers_) marker.position = std::clamp(marker.position, 0, std::max(last, 0));
}

}  // namespace plumetta
