// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/block_convolver.h"

#include <algorithm>
#include <bit>
#include <numeric>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

constexpr size_t kLanes = LaneTransform::kLanes;
constexpr size_t kSmallestTransform = 256;
// Of a long transform little is wasted on the overlap, of a short one more stays in the cache.
constexpr size_t kKernelsPerTransform = 4;
constexpr size_t kLargeKernel = size_t{1} << 16;
// A round is to take less than a millisecond.
constexpr size_t kElementsPerRound = size_t{1} << 16;

size_t transformSize(size_t taps) {
  const size_t kernels = taps < kLargeKernel ? kKernelsPerTransform : 2;
  return std::max(kSmallestTransform, std::bit_ceil(kernels * taps));
}

PLUMETTA_WIDE_VECTORS
void multiply(double* __restrict re, double* __restrict im, const double* hr, const double* hi, size_t size) {
  for (size_t i = 0; i < size; ++i, re += kLanes, im += kLanes) {
    for (size_t v = 0; v < kLanes; ++v) {
      const double r = re[v] * hr[i] - im[v] * hi[i];
      im[v] = re[v] * hi[i] + im[v] * hr[i];
      re[v] = r;
    }
  }
}

// Strips that lie inside the buffer, all at once, so that lanes are written side by side.
void readStrips(const float* const* sources, int64_t stride, double* re, double* im, int64_t count) {
  for (int64_t i = 0; i < count; ++i, re += kLanes, im += kLanes) {
    for (size_t v = 0; v < kLanes; ++v) {
      re[v] = sources[2 * v][i * stride];
      im[v] = sources[2 * v + 1][i * stride];
    }
  }
}

void writeStrips(float* const* targets, int64_t stride, const double* re, const double* im, int64_t count) {
  for (int64_t i = 0; i < count; ++i, re += kLanes, im += kLanes) {
    for (size_t v = 0; v < kLanes; ++v) {
      targets[2 * v][i * stride] = static_cast<float>(re[v]);
      targets[2 * v + 1][i * stride] = static_cast<float>(im[v]);
    }
  }
}

}  // namespace

BlockConvolver::BlockConvolver(const std::vector<double>& kernel, int channels)
    : taps_(static_cast<int64_t>(kernel.size())),
      before_(taps_ / 2),
      channels_(channels),
      transform_(transformSize(kernel.size())),
      blockFrames_(static_cast<int64_t>(transform_.size()) - taps_ + 1),
      kernelRe_(transform_.size()),
      kernelIm_(transform_.size()),
      history_(static_cast<size_t>(before_ * channels)) {
  const size_t size = transform_.size();
  // A round holds whole blocks, so its strips are a multiple of the channels.
  const int granule = channels / std::gcd(channels, kStrips);
  const size_t wanted = kernel.size() < kLargeKernel
                            ? std::max(static_cast<size_t>(crew_.size()), kElementsPerRound / size / kLanes)
                            : 1;
  const size_t groups = (wanted + static_cast<size_t>(granule) - 1) / static_cast<size_t>(granule) *
                        static_cast<size_t>(granule);
  groups_.reserve(groups);
  while (groups_.size() < groups) groups_.emplace_back(size);
  roundFrames_ = static_cast<int64_t>(groups) * kStrips / channels * blockFrames_;
  // The sum runs forward over the signal, which is what the conjugate does; the transforms' scale goes in
  // too.
  Group& scratch = groups_.front();
  for (size_t k = 0; k < kernel.size(); ++k) scratch.re[k * kLanes] = kernel[k];
  transform_.forward(scratch.re.data(), scratch.im.data());
  for (size_t i = 0; i < size; ++i) {
    kernelRe_[i] = scratch.re[i * kLanes] / static_cast<double>(size);
    kernelIm_[i] = scratch.im[i * kLanes] / -static_cast<double>(size);
  }
}

bool BlockConvolver::process(float* samples, int64_t frames, const std::function<bool(double)>& between) {
  for (int64_t start = 0; start < frames; start += roundFrames_) {
    const Round round{samples, frames, start, std::min(start + roundFrames_, frames)};
    const int64_t blocks = (round.end - start + blockFrames_ - 1) / blockFrames_;
    const auto groups = static_cast<int>((blocks * channels_ + kStrips - 1) / kStrips);
    crew_.run(groups, [&](int group, int) {
      readGroup(round, group);
      convolve(groups_[static_cast<size_t>(group)]);
    });
    keepHistory(round);
    crew_.run(groups, [&](int group, int) { writeGroup(round, group); });
    if (between && !between(static_cast<double>(round.end) / static_cast<double>(frames))) return false;
  }
  return true;
}

void BlockConvolver::readGroup(const Round& round, int index) {
  Group& group = groups_[static_cast<size_t>(index)];
  const auto size = static_cast<int64_t>(transform_.size());
  const float* sources[kStrips];
  bool inside = true;
  for (int s = 0; s < kStrips; ++s) {
    const int strip = index * kStrips + s;
    const int64_t first = blockOf(round, strip) - before_;
    inside = inside && first >= round.start && first + size <= round.frames;
    sources[s] = round.samples + first * channels_ + strip % channels_;
  }
  if (inside) return readStrips(sources, channels_, group.re.data(), group.im.data(), size);
  for (int s = 0; s < kStrips; ++s) readStrip(round, index * kStrips + s, group.strip(s));
}

// At the edges: frames before the round have been written over, the history has them; beyond the end there is
// silence.
void BlockConvolver::readStrip(const Round& round, int strip, double* target) const {
  const auto size = static_cast<int64_t>(transform_.size());
  const int channel = strip % channels_;
  const int64_t first = std::min(blockOf(round, strip), round.frames + before_) - before_;
  const int64_t past = std::clamp<int64_t>(round.start - first, 0, size);
  const int64_t available = std::clamp<int64_t>(round.frames - first, past, size);
  const float* old = history_.data() + channel;
  for (int64_t i = 0; i < past; ++i, target += kLanes) {
    *target = old[(first + i - round.start + before_) * channels_];
  }
  const float* source = round.samples + channel;
  for (int64_t i = past; i < available; ++i, target += kLanes) *target = source[(first + i) * channels_];
  for (int64_t i = available; i < size; ++i, target += kLanes) *target = 0.0;
}

void BlockConvolver::writeGroup(const Round& round, int index) {
  Group& group = groups_[static_cast<size_t>(index)];
  const int64_t last = blockOf(round, index * kStrips + kStrips - 1);
  if (last + blockFrames_ <= round.end) {
    float* targets[kStrips];
    for (int s = 0; s < kStrips; ++s) {
      const int strip = index * kStrips + s;
      targets[s] = round.samples + blockOf(round, strip) * channels_ + strip % channels_;
    }
    return writeStrips(targets, channels_, group.re.data(), group.im.data(), blockFrames_);
  }
  for (int s = 0; s < kStrips; ++s) {
    const int strip = index * kStrips + s;
    const int64_t block = blockOf(round, strip);
    const int64_t count = std::min(blockFrames_, round.end - block);
    const double* source = group.strip(s);
    for (int64_t i = 0; i < count; ++i, source += kLanes) {
      round.samples[(block + i) * channels_ + strip % channels_] = static_cast<float>(*source);
    }
  }
}

// A round may be shorter than the history, which then keeps part of what it had.
void BlockConvolver::keepHistory(const Round& round) {
  const int64_t kept = std::max<int64_t>(before_ - roundFrames_, 0);
  const int64_t fresh = before_ - kept;
  if (round.end == round.frames) return;  // nothing reads it any more
  std::copy(history_.end() - kept * channels_, history_.end(), history_.begin());
  std::copy_n(round.samples + (round.end - fresh) * channels_, fresh * channels_,
              history_.begin() + kept * channels_);
}

void BlockConvolver::convolve(Group& group) const {
  transform_.forward(group.re.data(), group.im.data());
  multiply(group.re.data(), group.im.data(), kernelRe_.data(), kernelIm_.data(), transform_.size());
  transform_.backward(group.re.data(), group.im.data());
}

}  // namespace plumetta
