// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/block_convolver.h"

#include <algorithm>
#include <bit>

#include "core/cpu_variants.h"

namespace plumetta {
namespace {

constexpr size_t kSmallestTransform = 256;
// A transform of about eight kernels wastes little on their overlap and still fits into the cache.
constexpr size_t kKernelsPerTransform = 8;
constexpr size_t kLargeKernel = size_t{1} << 16;
// Transforms in a round: enough to keep some cores busy, few enough for a round to take about a millisecond.
constexpr size_t kSamplesPerRound = size_t{1} << 16;
constexpr int kMostPairs = 64;

size_t transformSize(size_t taps) {
  const size_t kernels = taps < kLargeKernel ? kKernelsPerTransform : 2;
  return std::max(kSmallestTransform, std::bit_ceil(kernels * taps));
}

int blocksPerRound(size_t size, int channels) {
  const auto pairs = static_cast<int>(std::clamp<size_t>(kSamplesPerRound / size, 2, kMostPairs));
  return std::max(1, 2 * pairs / channels);
}

PLUMETTA_WIDE_VECTORS
void multiply(double* __restrict re, double* __restrict im, const double* __restrict hr,
              const double* __restrict hi, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const double r = re[i] * hr[i] - im[i] * hi[i];
    im[i] = re[i] * hi[i] + im[i] * hr[i];
    re[i] = r;
  }
}

}  // namespace

BlockConvolver::BlockConvolver(const std::vector<double>& kernel, int channels)
    : taps_(static_cast<int>(kernel.size())),
      before_(taps_ / 2),
      channels_(channels),
      transform_(transformSize(kernel.size())),
      blockFrames_(static_cast<int>(transform_.size()) - taps_ + 1),
      blocks_(blocksPerRound(transform_.size(), channels)),
      kernelRe_(transform_.size()),
      kernelIm_(transform_.size()),
      history_(static_cast<size_t>(before_) * static_cast<size_t>(channels)) {
  const size_t size = transform_.size();
  for (int worker = 0; worker < crew_.size(); ++worker) scratches_.emplace_back(size);
  pairs_.resize(static_cast<size_t>((blocks_ * channels + 1) / 2));
  for (Pair& pair : pairs_) {
    pair.re.resize(size);
    pair.im.resize(size);
  }
  // The sum runs forward over the signal, which is what the conjugate does; the transforms' scale goes in
  // too.
  std::copy(kernel.begin(), kernel.end(), kernelRe_.begin());
  transform_.forward(kernelRe_.data(), kernelIm_.data(), scratches_[0]);
  for (size_t i = 0; i < size; ++i) {
    kernelRe_[i] /= static_cast<double>(size);
    kernelIm_[i] /= -static_cast<double>(size);
  }
}

bool BlockConvolver::process(float* samples, int64_t frames, const std::function<bool(double)>& between) {
  std::fill(history_.begin(), history_.end(), 0.0f);
  const int64_t roundFrames = int64_t{blocks_} * blockFrames_;
  for (int64_t start = 0; start < frames; start += roundFrames) {
    const int64_t end = std::min(start + roundFrames, frames);
    readRound(samples, frames, start);
    const int64_t blocks = (end - start + blockFrames_ - 1) / blockFrames_;
    const auto pairs = static_cast<int>((blocks * channels_ + 1) / 2);
    crew_.run(pairs, [&](int pair, int worker) {
      convolve(pairs_[static_cast<size_t>(pair)], scratches_[static_cast<size_t>(worker)]);
    });
    keepHistory(samples, end);
    writeRound(samples, end, start);
    if (between && !between(static_cast<double>(end) / static_cast<double>(frames))) return false;
  }
  return true;
}

// Lane after lane: the channels of the first block, then those of the next.
void BlockConvolver::readRound(const float* samples, int64_t frames, int64_t start) {
  const int lanes = blocks_ * channels_;
  for (int lane = 0; lane < lanes; ++lane) {
    const int64_t blockStart = start + int64_t{lane / channels_} * blockFrames_;
    Pair& pair = pairs_[static_cast<size_t>(lane / 2)];
    if (blockStart >= frames) {
      if (lane % 2 == 1) std::fill(pair.im.begin(), pair.im.end(), 0.0);
      break;
    }
    readLane(samples, frames, blockStart, lane % channels_, lane % 2 == 0 ? pair.re : pair.im);
  }
  if (lanes % 2 == 1) std::fill(pairs_.back().im.begin(), pairs_.back().im.end(), 0.0);
}

void BlockConvolver::readLane(const float* samples, int64_t frames, int64_t start, int channel,
                              std::vector<double>& lane) {
  const auto size = static_cast<int64_t>(lane.size());
  // Which round a block belongs to decides what has been written over already.
  const int64_t roundStart = start / (int64_t{blocks_} * blockFrames_) * (int64_t{blocks_} * blockFrames_);
  const int64_t first = start - before_;
  int64_t i = 0;
  for (; i < size && first + i < roundStart; ++i) {
    lane[static_cast<size_t>(i)] =
        history_[static_cast<size_t>((first + i - (roundStart - before_)) * channels_ + channel)];
  }
  const int64_t available = std::min(size, frames - first);
  const float* source = samples + (first + i) * channels_ + channel;
  for (; i < available; ++i, source += channels_) lane[static_cast<size_t>(i)] = *source;
  std::fill(lane.begin() + std::max<int64_t>(available, 0), lane.end(), 0.0);
}

void BlockConvolver::writeRound(float* samples, int64_t end, int64_t start) const {
  for (int lane = 0; lane < blocks_ * channels_; ++lane) {
    const int64_t blockStart = start + int64_t{lane / channels_} * blockFrames_;
    if (blockStart >= end) return;
    const int64_t count = std::min<int64_t>(blockFrames_, end - blockStart);
    const Pair& pair = pairs_[static_cast<size_t>(lane / 2)];
    const double* source = (lane % 2 == 0 ? pair.re : pair.im).data();
    float* target = samples + blockStart * channels_ + lane % channels_;
    for (int64_t i = 0; i < count; ++i, target += channels_) *target = static_cast<float>(source[i]);
  }
}

// A round may be shorter than the history, which then keeps part of what it had.
void BlockConvolver::keepHistory(const float* samples, int64_t end) {
  const int64_t roundFrames = int64_t{blocks_} * blockFrames_;
  const int64_t kept = std::max<int64_t>(before_ - roundFrames, 0);
  const int64_t fresh = before_ - kept;
  if (end < fresh) return;  // the last round of a short buffer; nothing reads the history any more
  std::copy(history_.end() - kept * channels_, history_.end(), history_.begin());
  std::copy_n(samples + (end - fresh) * channels_, fresh * channels_, history_.begin() + kept * channels_);
}

void BlockConvolver::convolve(Pair& pair, FastTransform::Scratch& scratch) const {
  transform_.forward(pair.re.data(), pair.im.data(), scratch);
  multiply(pair.re.data(), pair.im.data(), kernelRe_.data(), kernelIm_.data(), transform_.size());
  transform_.backward(pair.re.data(), pair.im.data(), scratch);
}

}  // namespace plumetta
