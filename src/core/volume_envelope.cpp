// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/volume_envelope.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace plumetta {
namespace {

// The curve of one segment at frame `position`, by the kind of its left point.
float curveAt(const EnvelopePoint& left, const EnvelopePoint& right, int32_t position) {
  const double y0 = left.value;
  const double y1 = right.value;
  const double t =
      (static_cast<double>(position) - left.position) / (static_cast<double>(right.position) - left.position);
  switch (left.kind) {
    case EnvelopeKind::linear:
      return static_cast<float>(y0 + (y1 - y0) * t);
    case EnvelopeKind::smooth:
      return static_cast<float>(y0 + (y1 - y0) * (1.0 - std::cos(std::numbers::pi * t)) / 2.0);
    case EnvelopeKind::hold:
      return left.value;
    case EnvelopeKind::curve:
      return static_cast<float>(y0 + (y1 - y0) * t * t);
  }
  return 0.0f;
}

// Points that have come to stand on the one before them, or on the last one, go; the ends stay.
void dropCollisions(std::vector<EnvelopePoint>& points) {
  int32_t previous = points.front().position;
  const int32_t last = points.back().position;
  const auto collides = [&](const EnvelopePoint& point) {
    if (point.position <= previous || point.position >= last) return true;
    previous = point.position;
    return false;
  };
  if (points.size() > 2)
    points.erase(std::remove_if(points.begin() + 1, points.end() - 1, collides), points.end() - 1);
}

std::vector<EnvelopePoint>::const_iterator firstBeyond(const std::vector<EnvelopePoint>& points,
                                                       int32_t position) {
  return std::upper_bound(points.begin(), points.end(), position,
                          [](int32_t at, const EnvelopePoint& p) { return at < p.position; });
}

float saneValue(float value) {
  if (std::isnan(value)) return 0.5f;  // unity: a damaged point changes nothing
  return std::clamp(value, 0.0f, 1.0f);
}

}  // namespace

CVolumeEnvelope::Channel CVolumeEnvelope::flatChannel() const {
  Channel channel;
  channel.points = {EnvelopePoint{0, 0.5f, EnvelopeKind::linear},
                    EnvelopePoint{length_ - 1, 0.5f, EnvelopeKind::linear}};
  return channel;
}

bool CVolumeEnvelope::valid(int index, int channel) const {
  return valid(channel) && index >= 0 && index < pointCount(channel);
}

void CVolumeEnvelope::addChannel() { channels_.push_back(flatChannel()); }

void CVolumeEnvelope::insertChannel(int channel) {
  if (channel >= 0 && channel <= channelCount()) channels_.insert(channels_.begin() + channel, flatChannel());
}

void CVolumeEnvelope::removeChannel(int channel) {
  if (valid(channel)) channels_.erase(channels_.begin() + channel);
}

void CVolumeEnvelope::copyChannel(int destination, int source) {
  if (valid(destination) && valid(source)) channels_[destination] = Channel(channels_[source]);
}

void CVolumeEnvelope::swapChannels(int a, int b) {
  if (valid(a) && valid(b)) std::swap(channels_[a], channels_[b]);
}

void CVolumeEnvelope::reset() {
  for (Channel& channel : channels_) channel = flatChannel();
}

void CVolumeEnvelope::copyFrom(const CVolumeEnvelope& other) {
  length_ = other.length_;
  channels_ = other.active() ? other.channels_ : std::vector<Channel>{};
}

void CVolumeEnvelope::adoptChannel(int channel, std::vector<EnvelopePoint> points, uint8_t flag) {
  if (!valid(channel)) return;
  Channel& target = channels_[channel];
  target.flag = flag;
  const int32_t last = length_ - 1;
  std::erase_if(points, [&](const EnvelopePoint& p) { return p.position < 0 || p.position > last; });
  if (points.empty()) return;  // nothing sound: the channel stays flat
  for (EnvelopePoint& point : points) {
    point.value = saneValue(point.value);
    if (static_cast<int>(point.kind) >= kEnvelopeKinds) point.kind = EnvelopeKind::linear;
  }
  std::stable_sort(points.begin(), points.end(),
                   [](const EnvelopePoint& a, const EnvelopePoint& b) { return a.position < b.position; });
  const EnvelopePoint tail = points.back();
  points.erase(std::unique(points.begin(), points.end(),
                           [](const auto& a, const auto& b) { return a.position == b.position; }),
               points.end());
  if (points.front().position != 0) {
    points.insert(points.begin(), EnvelopePoint{0, points.front().value, EnvelopeKind::linear});
  }
  if (points.back().position != last || points.size() == 1) {
    points.push_back(EnvelopePoint{last, tail.value, EnvelopeKind::linear});
  }
  target.points = std::move(points);
}

void CVolumeEnvelope::setLength(int32_t frames) {
  for (Channel& channel : channels_) {
    for (EnvelopePoint& point : channel.points) point.position = std::min(point.position, frames - 1);
    if (!channel.points.empty()) channel.points.back().position = frames - 1;
  }
  length_ = frames;
}

int CVolumeEnvelope::pointCount(int channel) const {
  return valid(channel) ? static_cast<int>(channels_[channel].points.size()) : 0;
}

EnvelopePoint CVolumeEnvelope::point(int index, int channel) const {
  if (!valid(index, channel)) return {0, 0.0f, EnvelopeKind::linear};
  return channels_[channel].points[index];
}

uint8_t CVolumeEnvelope::flag(int channel) const { return valid(channel) ? channels_[channel].flag : 0; }

void CVolumeEnvelope::setPosition(int index, int channel, int32_t frame) {
  if (valid(index, channel)) channels_[channel].points[index].position = frame;
}

void CVolumeEnvelope::setValue(int index, int channel, float value) {
  if (valid(index, channel)) channels_[channel].points[index].value = saneValue(value);
}

void CVolumeEnvelope::setKind(int index, int channel, EnvelopeKind kind) {
  if (valid(index, channel)) channels_[channel].points[index].kind = kind;
}

bool CVolumeEnvelope::insertPoint(int32_t position, float value, int channel, EnvelopeKind kind) {
  if (position < 0 || position >= length_ || !valid(channel)) return false;
  if (static_cast<int>(kind) >= kEnvelopeKinds) return false;
  if (!active()) reset();
  auto& points = channels_[channel].points;
  const auto behind = firstBeyond(points, position);
  if (behind == points.begin() || std::prev(behind)->position == position) return false;
  points.insert(behind, EnvelopePoint{position, saneValue(value), kind});
  return true;
}

bool CVolumeEnvelope::removePoint(int index, int channel) {
  if (!valid(channel) || index <= 0 || index >= pointCount(channel) - 1) return false;
  channels_[channel].points.erase(channels_[channel].points.begin() + index);
  return true;
}

void CVolumeEnvelope::invert(int channel) {
  if (!valid(channel)) return;
  for (EnvelopePoint& point : channels_[channel].points) point.value = 1.0f - point.value;
}

void CVolumeEnvelope::adjustForInsert(int32_t position, int32_t inserted, int32_t newLength) {
  if (!active()) return;
  for (Channel& channel : channels_) {
    for (EnvelopePoint& point : channel.points) {
      if (point.position > position) point.position += inserted;
    }
    if (!channel.points.empty()) channel.points.back().position = newLength - 1;
  }
  length_ = newLength;
}

void CVolumeEnvelope::adjustForDelete(int32_t from, int32_t to) {
  const int32_t first = std::min(from, to);
  const int32_t last = std::max(from, to);
  const int32_t removed = last - first + 1;
  for (Channel& channel : channels_) {
    auto& points = channel.points;
    if (points.empty()) continue;
    const auto inner = points.begin() + 1;
    const auto kept = std::remove_if(inner, std::prev(points.end()), [&](const EnvelopePoint& p) {
      return p.position >= first && p.position <= last;
    });
    points.erase(kept, std::prev(points.end()));
    for (EnvelopePoint& point : points) {
      if (point.position > last) point.position -= removed;
    }
    points.back().position = length_ - removed - 1;
    // Inner points may have come to stand on an end: positions stay distinct, and the ends stay.
    std::erase_if(points, [&](const EnvelopePoint& p) {
      const bool isEnd = &p == &points.front() || &p == &points.back();
      return !isEnd && (p.position <= 0 || p.position >= points.back().position);
    });
  }
  length_ -= removed;
}

void CVolumeEnvelope::scale(double ratio) {
  for (Channel& channel : channels_) {
    for (EnvelopePoint& point : channel.points) point.position = static_cast<int32_t>(point.position / ratio);
    if (channel.points.empty()) continue;
    channel.points.back().position = length_ - 1;
    dropCollisions(channel.points);
  }
}

float CVolumeEnvelope::gainAt(int32_t position, int channel) const {
  float gain = 0.0f;
  gainsAt(&position, 1, channel, &gain);
  return gain;
}

void CVolumeEnvelope::gainsAt(const int32_t* positions, int count, int channel, float* gains) const {
  if (!active() || !valid(channel)) {
    std::fill_n(gains, count, active() ? 0.0f : 1.0f);
    return;
  }
  const auto& points = channels_[channel].points;
  auto behind = points.begin();  // the first point beyond the last frame looked at
  for (int i = 0; i < count; ++i) {
    const int32_t position = positions[i];
    const bool sameSegment = behind != points.begin() && std::prev(behind)->position <= position &&
                             (behind == points.end() || position < behind->position);
    if (!sameSegment) behind = firstBeyond(points, position);
    if (position >= length_ || behind == points.begin()) {
      gains[i] = 0.0f;
      continue;
    }
    const EnvelopePoint& left = *std::prev(behind);
    const bool atPoint = left.position == position || behind == points.end();
    gains[i] = atPoint ? left.value : 2.0f * curveAt(left, *behind, position);
  }
}

void CVolumeEnvelope::apply(float* samples, int32_t first, int32_t frames) const {
  if (!active()) return;
  frames = std::min(frames, length_ - first);
  for (int channel = 0; channel < channelCount(); ++channel) applyChannel(samples, first, frames, channel);
}

void CVolumeEnvelope::applyChannel(float* samples, int32_t first, int32_t frames, int channel) const {
  const auto& points = channels_[channel].points;
  if (points.empty() || frames < 1) return;
  const auto stride = static_cast<size_t>(channelCount());
  const int32_t end = first + frames;
  const auto scale = [&](int32_t frame, float gain) {
    samples[static_cast<size_t>(frame - first) * stride + static_cast<size_t>(channel)] *= gain;
  };
  for (size_t i = 1; i < points.size(); ++i) {
    const EnvelopePoint& left = points[i - 1];
    const EnvelopePoint& right = points[i];
    if (right.position <= left.position) break;
    const double slope = (static_cast<double>(left.value) - right.value) /
                         (static_cast<double>(left.position) - right.position);
    const int32_t stop = std::min(right.position, end);
    for (int32_t frame = std::max(left.position, first); frame < stop; ++frame) {
      const float curve = left.kind == EnvelopeKind::linear
                              ? static_cast<float>(left.value + slope * (frame - left.position))
                              : curveAt(left, right, frame);
      scale(frame, 2.0f * curve);
    }
  }
  if (end == length_) scale(length_ - 1, 2.0f * points.back().value);
}

}  // namespace plumetta
