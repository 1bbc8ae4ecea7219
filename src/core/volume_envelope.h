// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace plumetta {

// How the curve runs from a point to the next.
enum class EnvelopeKind : uint8_t { linear = 0, smooth = 1, hold = 2, curve = 3 };
inline constexpr int kEnvelopeKinds = 4;

struct EnvelopePoint {
  int32_t position = 0;  // frame
  float value = 0.5f;    // 0 silence, 0.5 unity, 1 twice the level
  EnvelopeKind kind = EnvelopeKind::linear;
};

// A gain curve per channel over a buffer. Points of a channel ascend and never share a position; the first
// stands at 0 and the last at length - 1, and neither can be removed. The gain is twice the curve's value.
// Without channels the envelope is inactive: gain 1 everywhere.
class CVolumeEnvelope {
 public:
  bool active() const { return !channels_.empty() && !channels_.front().points.empty(); }
  int channelCount() const { return static_cast<int>(channels_.size()); }
  int32_t length() const { return length_; }

  void clear() { channels_ = {}; }
  // Appends a flat channel: unity from 0 to length - 1.
  void addChannel();
  void insertChannel(int channel);
  void removeChannel(int channel);
  void copyChannel(int destination, int source);
  void swapChannels(int a, int b);
  // Makes every channel flat.
  void reset();
  // Replaces everything by a copy of an active envelope; clears when `other` is inactive.
  void copyFrom(const CVolumeEnvelope& other);
  // Takes a channel as it was read from a file: what breaks the invariants is dropped or completed.
  void adoptChannel(int channel, std::vector<EnvelopePoint> points, uint8_t flag);

  // The new frame count: every point at or beyond it, and every last point, moves to frames - 1.
  void setLength(int32_t frames);
  // Sets the length alone; the points follow through another call.
  void setLengthField(int32_t frames) { length_ = frames; }

  int pointCount(int channel) const;
  // An empty point for indices out of range.
  EnvelopePoint point(int index, int channel) const;
  uint8_t flag(int channel) const;
  void setPosition(int index, int channel, int32_t frame);
  void setValue(int index, int channel, float value);
  void setKind(int index, int channel, EnvelopeKind kind);

  // False when position, channel or kind are out of range or a point already stands there.
  bool insertPoint(int32_t position, float value, int channel, EnvelopeKind kind);
  // False for the first and the last point of a channel.
  bool removePoint(int index, int channel);
  // Mirrors a channel around unity.
  void invert(int channel);

  void adjustForInsert(int32_t position, int32_t inserted, int32_t newLength);
  void adjustForDelete(int32_t from, int32_t to);
  // Divides every position but the last by `ratio`; the last goes to length - 1. Set the length first.
  void scale(double ratio);

  // The gain at a frame: 1 when inactive, 0 at or beyond the length. Exactly at a point it is that point's
  // stored value, not doubled, for the view reads point values through this.
  float gainAt(int32_t position, int channel) const;
  // The gains at `count` frames, the same bits as one by one; quick where they mostly ascend. Below 0 the
  // gain is 0.
  void gainsAt(const int32_t* positions, int count, int channel, float* gains) const;
  // Multiplies `frames` frames of interleaved samples, `channelCount()` to a frame, that stand from frame
  // `first` of the buffer on.
  void apply(float* samples, int32_t first, int32_t frames) const;

 private:
  struct Channel {
    std::vector<EnvelopePoint> points;
    uint8_t flag = 1;
  };

  bool valid(int channel) const { return channel >= 0 && channel < channelCount(); }
  bool valid(int index, int channel) const;
  Channel flatChannel() const;
  void applyChannel(float* samples, int32_t first, int32_t frames, int channel) const;

  std::vector<Channel> channels_;
  int32_t length_ = 0;
};

}  // namespace plumetta
