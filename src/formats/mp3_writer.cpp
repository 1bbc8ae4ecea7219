// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/mp3_writer.h"

#include <algorithm>

#include "formats/losses.h"

namespace plumetta {
namespace {

constexpr uint32_t kLowestInputRate = 1000;  // beyond these resampling makes no sense
constexpr uint32_t kHighestInputRate = 1000000;
constexpr int kLowestMpeg1Rate = 32000;
constexpr int kLowestMpeg2Rate = 16000;

constexpr int kStoredRates[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
constexpr int kMpeg1BitRates[] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
// Of MPEG-2; encoders use those of MPEG-2.5 up to 64.
constexpr int kMpeg2BitRates[] = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
constexpr int kMpeg25BitRates[] = {8, 16, 24, 32, 40, 48, 56, 64};

int storedRateFor(int rate) {
  const int highest = *std::rbegin(kStoredRates);
  for (const int stored : {48000, 44100, 32000}) {
    if (rate > highest && rate % stored == 0) return stored;
  }
  const auto above = std::lower_bound(std::begin(kStoredRates), std::end(kStoredRates), rate);
  return above == std::end(kStoredRates) ? highest : *above;
}

int bitRateFor(std::span<const int> rates, int wanted) {
  const auto next = std::lower_bound(rates.begin(), rates.end(), wanted);
  return next == rates.end() ? rates.back() : *next;
}

std::span<const int> bitRatesOf(int storedRate) {
  if (storedRate >= kLowestMpeg1Rate) return kMpeg1BitRates;
  return storedRate >= kLowestMpeg2Rate ? std::span<const int>(kMpeg2BitRates) : kMpeg25BitRates;
}

enum class Encoded { done, cancelled, failed };

Encoded encodeAll(Mp3Encoder& encoder, const CWave& wave, OutputStream& out) {
  std::vector<int16_t> chunk(encoder.samplesPerChunk());
  std::vector<uint8_t> bytes;
  const size_t all = wave.sampleCount();
  for (size_t done = 0; done < all;) {
    const size_t count = std::min(chunk.size(), all - done);
    toPcm16(wave.samples() + done, chunk.data(), count);
    if (!encoder.encode({chunk.data(), count}, bytes)) return Encoded::failed;
    out.write(bytes.data(), bytes.size());
    if (out.failed()) return Encoded::failed;
    done += count;
    if (!wave.progress.report(static_cast<float>(done) / static_cast<float>(all))) return Encoded::cancelled;
  }
  if (!encoder.finish(bytes)) return Encoded::failed;
  out.write(bytes.data(), bytes.size());
  return Encoded::done;
}

SaveResult exportFailure(std::string reason) {
  SaveResult result = SaveResult::failure(std::move(reason));
  result.message = kMp3ExportFailed;
  return result;
}

}  // namespace

std::optional<Mp3Stream> mp3StreamFor(int channels, uint32_t sampleRate, int bitRateKbits) {
  if (channels < 1 || channels > 2 || bitRateKbits < 1) return std::nullopt;
  if (sampleRate < kLowestInputRate || sampleRate > kHighestInputRate) return std::nullopt;
  const auto rate = static_cast<int>(sampleRate);
  int stored = storedRateFor(rate);
  if (stored >= kLowestMpeg1Rate && bitRateFor(kMpeg2BitRates, bitRateKbits) < kMpeg1BitRates[0]) stored /= 2;
  return Mp3Stream{channels, rate, stored, bitRateFor(bitRatesOf(stored), bitRateKbits)};
}

SaveResult saveMp3(FileSystem& files, const std::string& path, const CWave& wave, const SaveOptions& options,
                   const Mp3EncoderSource& encoderSource) {
  const auto stream = mp3StreamFor(wave.channels(), wave.sampleRate(), options.bitRateKbits);
  if (!stream) return exportFailure("MP3 can't hold audio of this format.");
  const auto encoder = encoderSource();
  if (encoder == nullptr) return exportFailure("There is no encoder.");
  if (!encoder->begin(*stream)) return exportFailure("The encoder refuses the format.");
  Encoded outcome = Encoded::done;
  const auto error = writeAtomically(
      files, path, options.sync,
      [&](OutputStream& out) {
        outcome = encodeAll(*encoder, wave, out);
        return outcome == Encoded::done;
      },
      [&](const std::string& written) { return encoder->completeFile(files, written); });
  if (outcome == Encoded::cancelled) return SaveResult::givenUp();
  if (!error) return {};
  return exportFailure(outcome == Encoded::failed ? "The encoder has failed." : error.message());
}

std::vector<std::string> lossesOfMp3(const CWave& wave) {
  std::vector<std::string> losses = annotationLosses(wave, {});
  if (wave.bitsPerSample() > 16) {
    losses.push_back(std::to_string(wave.bitsPerSample()) + " bits: 16 are kept");
  }
  const auto stream = mp3StreamFor(wave.channels(), wave.sampleRate(), SaveOptions{}.bitRateKbits);
  if (stream && stream->storedRate != stream->inputRate) {
    losses.push_back("sample rate: becomes " + std::to_string(stream->storedRate) + " Hz");
  }
  return losses;
}

}  // namespace plumetta
