// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/batch_functions.h"

#include <algorithm>
#include <charconv>

#include "dsp/amplitude.h"
#include "dsp/delete_ranges.h"
#include "dsp/resample.h"
#include "dsp/silence.h"

namespace plumetta {
namespace {

FrameRange wholeOf(const CWave& wave) { return {0, wave.frames() - 1}; }

// Tenths of a dB.
template <int tenthsOfDb>
bool normalizeTo(CWave& wave) {
  normalize(wave, wholeOf(wave), tenthsOfDb / 10.0);
  return true;
}

enum class Place { beginning, end };

// As many frames as the rate, divided.
template <int divisor, Place place>
bool addSilence(CWave& wave) {
  const int64_t frames = wave.sampleRate() / divisor;
  if (frames > kMaxFrames) return false;
  return frames == 0 ||
         wave.insertSilence(place == Place::end ? wave.frames() : 0, static_cast<int32_t>(frames));
}

bool toStereo(CWave& wave) { return wave.channels() != 1 || wave.monoToStereo(); }

// Modes of the batch's own, not those of the mix-down.
enum class MonoMode { mean = 0, left = 1, right = 2 };

template <MonoMode mode>
bool toMono(CWave& wave) {
  return wave.mixDownToMono(mode == MonoMode::mean ? kMixAllChannels : mode == MonoMode::left ? 0 : 1);
}

bool mute(CWave& wave) {
  volume(wave, wholeOf(wave), 0.0f);
  return true;
}

template <bool (*routine)(CWave&, FrameRange)>
bool overWhole(CWave& wave) {
  routine(wave, wholeOf(wave));  // refused where there is nothing to do
  return true;
}

template <int hz>
bool toRate(CWave& wave) {
  if (wave.frames() > 0) return resample(wave, {static_cast<double>(hz), false, 0});
  wave.setSampleRate(hz);
  return true;
}

// A buffer without any sound stays as it is.
template <int db>
bool trimEnds(CWave& wave) {
  if (const auto silence = silentEnds(wave, db); silence && !silence->empty()) deleteRanges(wave, *silence);
  return true;
}

template <int bits, FormatTag tag>
bool toDepth(CWave& wave) {
  wave.setBitsPerSample(bits);
  wave.setFormatTag(tag);
  return true;
}

bool loopAll(CWave& wave) {
  if (wave.frames() > 0) wave.loops.setLoop(0, wave.frames() - 1);
  return true;
}

bool clearLoops(CWave& wave) {
  wave.loops.clear();
  return true;
}

}  // namespace

const std::vector<BatchFunction>& batchFunctions() {
  static const std::vector<BatchFunction> functions{
      {"Normalize 0dB", normalizeTo<0>},
      {"Normalize -0.3dB", normalizeTo<-3>},
      {"Normalize -1dB", normalizeTo<-10>},
      {"Normalize -3dB", normalizeTo<-30>},
      {"Normalize -6dB", normalizeTo<-60>},
      {"Insert 1 second silence at begining", addSilence<1, Place::beginning>},
      {"Insert 0.5 second silence at begining", addSilence<2, Place::beginning>},
      {"Insert 1 second silence at end", addSilence<1, Place::end>},
      {"Convert to stereo", toStereo},
      {"Convert to mono left", toMono<MonoMode::left>},
      {"Convert to mono right", toMono<MonoMode::right>},
      {"Convert to mono 50% 50%", toMono<MonoMode::mean>},
      {"Mute", mute},
      {"Vocal remover", overWhole<removeVocals>},
      {"Invert", overWhole<invert>},
      {"Swap channel", overWhole<swapStereo>},
      {"VST Chain", nullptr, 0, true},
      {"Simple DC Remover", overWhole<removeDc>},
      {"Re sample 22050Hz (no filter or interpolation)", toRate<22050>},
      {"Re sample 44100Hz (no filter or interpolation)", toRate<44100>},
      {"Re sample 96000Hz (no filter or interpolation)", toRate<96000>},
      {"Auto trim at -50dB", trimEnds<-50>},
      // -140 dB on purpose: what lies below is silence by any measure.
      {"Auto trim at -InfdB", trimEnds<-140>},
      {"Convert to 8 bits", toDepth<8, kFormatPcm>},
      {"Convert to 16 bits", toDepth<16, kFormatPcm>},
      {"Convert to 24 bits", toDepth<24, kFormatPcm>},
      {"Convert to 32 bits PCM", toDepth<32, kFormatPcm>},
      {"Convert to 32 bits float", toDepth<32, kFormatFloat>},
      {"Convert to 64 bits float", toDepth<64, kFormatFloat>},
      {"Convert to wav", nullptr},
      {"Convert to mp3 (128kbit/s)", nullptr, 128},
      {"Convert to mp3 (192kbit/s)", nullptr, 192},
      {"Convert to mp3 (256kbit/s)", nullptr, 256},
      {"Convert to mp3 (320kbit/s)", nullptr, 320},
      {"Add loop point at start and end", loopAll},
      {"Delete loop point", clearLoops},
  };
  return functions;
}

std::optional<int> batchFunctionIn(std::string_view text) {
  const auto& functions = batchFunctions();
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  for (size_t i = 0; i < functions.size(); ++i) {
    const std::string_view own = functions[i].text;
    if (std::ranges::equal(text, own, {}, lower, lower)) return static_cast<int>(i);
  }
  size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  return whole && number < functions.size() ? std::optional(static_cast<int>(number)) : std::nullopt;
}

}  // namespace plumetta
