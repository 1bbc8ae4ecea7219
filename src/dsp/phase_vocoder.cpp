// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/phase_vocoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>
#include <numbers>

#include "core/cpu_variants.h"
#include "core/work_crew.h"
#include "dsp/polar.h"

namespace plumetta {
namespace {

constexpr int kLanes = static_cast<int>(LaneTransform::kLanes);
// Samples a channel between two reports of progress: some ten milliseconds of work.
constexpr int64_t kPieceSamples = 1 << 16;

}  // namespace

bool VocoderSettings::valid() const {
  const bool sizeIsGood =
      size >= kSmallestFrame && size <= kLargestFrame && std::has_single_bit(static_cast<unsigned>(size));
  return sizeIsGood && overlap >= 1 && overlap <= size && pitch > 0.0 && std::isfinite(pitch);
}

PhaseVocoder::PhaseVocoder(const VocoderSettings& settings)
    : settings_(settings),
      hop_(settings.size / settings.overlap),
      bins_(settings.size / 2 + 1),
      transform_(static_cast<size_t>(settings.size)) {
  const auto size = static_cast<size_t>(settings.size);
  for (size_t i = 0; i < size; ++i) {
    window_.push_back(
        0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size)));
  }
  const size_t covered = size + static_cast<size_t>((kFrames - 1) * hop_);
  input_.resize(covered);
  output_.resize(covered);
  re_.resize(size * kLanes);
  im_.resize(size * kLanes);
  const size_t rows = static_cast<size_t>(bins_) * kFrames;
  for (auto* values : {&rowRe_, &rowIm_, &magnitude_, &turns_, &newMagnitude_, &newAdvance_, &loudest_}) {
    values->resize(rows);
  }
  lastTurns_.resize(static_cast<size_t>(bins_));
  sumTurns_.resize(static_cast<size_t>(bins_));
}

void PhaseVocoder::process(float* samples, int64_t count, int64_t stride) {
  for (int64_t done = 0; done < count; done += granule()) {
    const int64_t now = std::min(granule(), count - done);
    takeInput(samples + done * stride, now, stride);
    analyse();
    shift();
    synthesise();
    giveOutput(samples + done * stride, now, stride);
  }
}

// Frame f covers the `size` samples from f × hop of the queue on.
void PhaseVocoder::takeInput(const float* samples, int64_t count, int64_t stride) {
  std::copy(input_.begin() + granule(), input_.end(), input_.begin());
  double* fresh = input_.data() + (static_cast<int64_t>(input_.size()) - granule());
  for (int64_t i = 0; i < count; ++i) fresh[i] = samples[i * stride];
  std::fill(fresh + count, fresh + granule(), 0.0);
  const auto size = static_cast<size_t>(settings_.size);
  for (size_t i = 0; i < size; ++i) {
    for (int v = 0; v < kLanes; ++v) {
      const double* frame = input_.data() + 2 * v * hop_ + i;
      re_[i * kLanes + static_cast<size_t>(v)] = frame[0] * window_[i];
      im_[i * kLanes + static_cast<size_t>(v)] = frame[hop_] * window_[i];
    }
  }
}

// Magnitude and angle of every bin of every frame. Two real frames share a transform: the parts of a spectrum
// that mirror each other belong to one, those that oppose each other to the other.
void PhaseVocoder::analyse() {
  transform_.forward(re_.data(), im_.data());
  for (int k = 0; k < bins_; ++k) {
    const size_t here = transform_.placeOf(static_cast<size_t>(k)) * kLanes;
    const size_t mirror = transform_.placeOf(static_cast<size_t>(k == 0 ? 0 : settings_.size - k)) * kLanes;
    double* re = row(rowRe_, k);
    double* im = row(rowIm_, k);
    for (size_t v = 0; v < kLanes; ++v) {
      re[2 * v] = re_[here + v] + re_[mirror + v];
      im[2 * v] = im_[here + v] - im_[mirror + v];
      re[2 * v + 1] = im_[here + v] + im_[mirror + v];
      im[2 * v + 1] = re_[mirror + v] - re_[here + v];
    }
  }
  toPolar(rowRe_.data(), rowIm_.data(), magnitude_.data(), turns_.data(), magnitude_.size());
}

// Moves magnitudes and true frequencies to their new bins. Where bins meet their magnitudes add up and the
// loudest one's frequency counts.
void PhaseVocoder::shift() {
  for (auto* values : {&newMagnitude_, &newAdvance_, &loudest_})
    std::fill(values->begin(), values->end(), 0.0);
  const double hopShare = static_cast<double>(hop_) / settings_.size;
  for (int k = 0; k < bins_; ++k) {
    const double target = std::floor(k * settings_.pitch);
    const double* turns = row(turns_, k);
    double& last = lastTurns_[static_cast<size_t>(k)];
    if (target < bins_) {
      const double* magnitude = row(magnitude_, k);
      double* newMagnitude = row(newMagnitude_, static_cast<int>(target));
      double* newAdvance = row(newAdvance_, static_cast<int>(target));
      double* loudest = row(loudest_, static_cast<int>(target));
      const double expected = k * hopShare;  // turns from one frame to the next, in the middle of the bin
      double before = last;
      for (int f = 0; f < kFrames; ++f) {
        const double surplus = turns[f] - before - expected;
        before = turns[f];
        const double advance = (expected + (surplus - nearestWhole(surplus))) * settings_.pitch;
        newMagnitude[f] += magnitude[f];
        newAdvance[f] = magnitude[f] >= loudest[f] ? advance : newAdvance[f];
        loudest[f] = magnitude[f] >= loudest[f] ? magnitude[f] : loudest[f];
      }
    }
    last = turns[kFrames - 1];
  }
  for (int k = 0; k < bins_; ++k) {
    double sum = sumTurns_[static_cast<size_t>(k)];
    double* turns = row(turns_, k);
    const double* advance = row(newAdvance_, k);
    for (int f = 0; f < kFrames; ++f) turns[f] = sum += advance[f];
    sumTurns_[static_cast<size_t>(k)] = sum - nearestWhole(sum);
  }
}

void PhaseVocoder::synthesise() {
  toCartesian(newMagnitude_.data(), turns_.data(), rowRe_.data(), rowIm_.data(), rowRe_.size());
  for (int k = 0; k < bins_; ++k) {
    const bool alone = k == 0 || k == bins_ - 1;  // a bin that mirrors itself is real
    const size_t here = transform_.placeOf(static_cast<size_t>(k)) * kLanes;
    const size_t mirror = transform_.placeOf(static_cast<size_t>(k == 0 ? 0 : settings_.size - k)) * kLanes;
    const double* re = row(rowRe_, k);
    const double* im = row(rowIm_, k);
    for (size_t v = 0; v < kLanes; ++v) {
      const double evenIm = alone ? 0.0 : im[2 * v];
      const double oddIm = alone ? 0.0 : im[2 * v + 1];
      re_[mirror + v] = re[2 * v] + oddIm;
      im_[mirror + v] = re[2 * v + 1] - evenIm;
      re_[here + v] = re[2 * v] - oddIm;
      im_[here + v] = re[2 * v + 1] + evenIm;
    }
  }
  transform_.backward(re_.data(), im_.data());
  const auto size = static_cast<size_t>(settings_.size);
  for (size_t i = 0; i < size; ++i) {
    for (int v = 0; v < kLanes; ++v) {
      double* frame = output_.data() + 2 * v * hop_ + i;
      frame[0] += re_[i * kLanes + static_cast<size_t>(v)] * window_[i];
      frame[hop_] += im_[i * kLanes + static_cast<size_t>(v)] * window_[i];
    }
  }
}

// The transforms there and back, and a window's power at each overlap, leave this much gain.
void PhaseVocoder::giveOutput(float* samples, int64_t count, int64_t stride) {
  const double scale = 1.0 / (2.0 * settings_.size * settings_.overlap);
  for (int64_t i = 0; i < count; ++i)
    samples[i * stride] = static_cast<float>(output_[static_cast<size_t>(i)] * scale);
  std::copy(output_.begin() + granule(), output_.end(), output_.begin());
  std::fill(output_.end() - granule(), output_.end(), 0.0);
}

bool shiftPitch(CWave& wave, const VocoderSettings& settings) {
  if (!settings.valid() || wave.frames() == 0) return false;
  try {
    std::vector<PhaseVocoder> vocoders(static_cast<size_t>(wave.channels()), PhaseVocoder(settings));
    const int64_t granule = vocoders.front().granule();
    const int64_t piece = (kPieceSamples + granule - 1) / granule * granule;
    WorkCrew crew;
    for (int64_t start = 0; start < wave.frames(); start += piece) {
      const int64_t count = std::min<int64_t>(piece, wave.frames() - start);
      crew.run(wave.channels(), [&](int channel, int) {
        vocoders[static_cast<size_t>(channel)].process(wave.samples() + start * wave.channels() + channel,
                                                       count, wave.channels());
      });
      if (!wave.nextTurn(static_cast<double>(start + count) / wave.frames())) return false;
    }
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

}  // namespace plumetta
