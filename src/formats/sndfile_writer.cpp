// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "formats/sndfile_formats.h"
#include "formats/sndfile_stream.h"

namespace plumetta {
namespace {

constexpr int64_t kBlockFrames = 4096;

// Puts floats into a file of one encoding, by our own rounding and clamping.
class BlockWriter {
 public:
  BlockWriter(SNDFILE& sound, const StoredEncoding& stored, int channels, bool lossy)
      : sound_(sound),
        stored_(stored),
        channels_(channels),
        lossy_(lossy),
        encode_(blockEncoder(stored.encoding, stored.signType)),
        raw_(static_cast<size_t>(channels * kBlockFrames) * sizeof(int32_t)),
        wide_(static_cast<size_t>(channels * kBlockFrames)) {}

  // False when the file did not take all frames, at most kBlockFrames.
  bool write(const float* floats, int64_t frames) {
    const auto samples = static_cast<size_t>(frames * channels_);
    switch (stored_.encoding) {
      case Encoding::float32:
      case Encoding::float64:
        return sf_writef_float(&sound_, lossy_ ? bounded(floats, samples) : floats, frames) == frames;
      case Encoding::pcm16:
        encode_(floats, raw_.data(), samples);
        return sf_writef_short(&sound_, reinterpret_cast<const int16_t*>(raw_.data()), frames) == frames;
      case Encoding::pcm32:
        encode_(floats, raw_.data(), samples);
        return sf_writef_int(&sound_, reinterpret_cast<const int32_t*>(raw_.data()), frames) == frames;
      case Encoding::pcm24:
        encode_(floats, raw_.data(), samples);
        widen24(samples);
        return sf_writef_int(&sound_, wide_.data(), frames) == frames;
      case Encoding::pcm8:
        encode_(floats, raw_.data(), samples);
        widen8(samples);
        return sf_writef_int(&sound_, wide_.data(), frames) == frames;
      case Encoding::muLaw:
      case Encoding::aLaw:
        encode_(floats, raw_.data(), samples);
        return sf_write_raw(&sound_, raw_.data(), frames * channels_) == frames * channels_;
      case Encoding::adpcm4:
        break;
    }
    return false;
  }

 private:
  void widen24(size_t samples) {
    const uint8_t* raw = raw_.data();
    for (size_t i = 0; i < samples; ++i, raw += 3) {
      const uint32_t bits = static_cast<uint32_t>(raw[0]) << 8 | static_cast<uint32_t>(raw[1]) << 16 |
                            static_cast<uint32_t>(raw[2]) << 24;
      wide_[i] = static_cast<int32_t>(bits);
    }
  }
  void widen8(size_t samples) {
    const uint32_t flip = stored_.signType == SignType::isUnsigned ? 0x80 : 0;
    for (size_t i = 0; i < samples; ++i) wide_[i] = static_cast<int32_t>((raw_[i] ^ flip) << 24);
  }
  // Lossy encoders don't expect more than full scale, and lose their heads over what is not a number.
  const float* bounded(const float* floats, size_t samples) {
    auto* kept = reinterpret_cast<float*>(wide_.data());
    for (size_t i = 0; i < samples; ++i) {
      kept[i] = std::isnan(floats[i]) ? 0.0f : std::clamp(floats[i], -1.0f, 1.0f);
    }
    return kept;
  }

  SNDFILE& sound_;
  StoredEncoding stored_;
  int channels_;
  bool lossy_;
  BlockEncoder encode_;
  std::vector<uint8_t> raw_;
  std::vector<int32_t> wide_;
};

// The nominal rates of libvorbis's quality steps from 0.0 to 1.0, stereo at 44100 Hz.
constexpr int kVorbisKbits[] = {64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 500};

double vorbisQuality(int kbitsOfStereo) {
  const auto above = std::lower_bound(std::begin(kVorbisKbits), std::end(kVorbisKbits), kbitsOfStereo);
  if (above == std::begin(kVorbisKbits)) return 0.0;
  if (above == std::end(kVorbisKbits)) return 1.0;
  const auto step = static_cast<double>(above - std::begin(kVorbisKbits));
  return (step - static_cast<double>(*above - kbitsOfStereo) / (above[0] - above[-1])) / 10.0;
}

// libsndfile spreads Opus's 6 to 256 kbit/s a channel over its scale of compression, best at 0.
double opusCompression(int kbits, int channels) {
  const double perChannel = 1000.0 * kbits / channels;
  return std::clamp(1.0 - (perChannel - 6000.0) / 250000.0, 0.0, 1.0);
}

void setBitRate(SNDFILE& sound, int subtype, int kbits, int channels) {
  if (subtype == SF_FORMAT_OPUS) {
    double compression = opusCompression(kbits, channels);
    sf_command(&sound, SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression);
  } else {
    double quality = vorbisQuality(kbits * 2 / channels);
    sf_command(&sound, SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof quality);
  }
}

// Everything that one save carries along.
struct Save {
  const SndfileKind& kind;
  StoredEncoding stored;
  const CWave& wave;
  const SaveOptions& options;
};

std::string refusedBy(const SndfileKind& kind, SNDFILE* sound) {
  return std::string(kind.name) + " can't hold this audio: " + sf_strerror(sound);
}

// False when the person cancelled; `failure` says what the library would not do.
bool encodeFile(OutputStream& out, const Save& save, std::string& failure) {
  SF_INFO info{};
  info.samplerate = static_cast<int>(save.wave.sampleRate());
  info.channels = save.wave.channels();
  info.format = save.kind.container | save.stored.subtype;
  SndfileOutput output(out);
  SndfilePointer sound = output.open(info);
  if (!sound) {
    failure = refusedBy(save.kind, nullptr);
    return true;
  }
  // Its peak chunk would hold the time, and make two files of the same sound differ.
  sf_command(sound.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
  if (save.kind.hasBitRate) {
    setBitRate(*sound, save.stored.subtype, save.options.bitRateKbits, info.channels);
  }
  if (save.kind.writeAnnotations != nullptr) save.kind.writeAnnotations(*sound, save.wave);
  output.begin();
  // Some of its encoders begin with the first sample, and would leave an empty file without one.
  if (save.wave.frames() == 0) sf_command(sound.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
  BlockWriter blocks(*sound, save.stored, info.channels, save.kind.hasBitRate);
  const int64_t frames = save.wave.frames();
  for (int64_t done = 0; done < frames;) {
    const int64_t block = std::min(kBlockFrames, frames - done);
    if (!blocks.write(save.wave.samples() + done * info.channels, block)) {
      failure = refusedBy(save.kind, sound.get());
      return true;
    }
    done += block;
    if (!save.wave.progress.report(static_cast<float>(done) / static_cast<float>(frames))) return false;
  }
  if (save.kind.keepsSizeEven && save.wave.needsEvenFrame()) {
    const std::vector<float> silence(static_cast<size_t>(info.channels), 0.0f);
    blocks.write(silence.data(), 1);
  }
  if (const int error = sf_close(sound.release()); error != SF_ERR_NO_ERROR) {
    failure = std::string(save.kind.name) + " file: " + sf_error_number(error);
  }
  return true;
}

}  // namespace

SaveResult saveSndfile(const SndfileKind& kind, FileSystem& files, const std::string& path, const CWave& wave,
                       const SaveOptions& options) {
  if (std::string reason = refusalOf(kind, wave); !reason.empty()) return SaveResult::failure(reason);
  const Save save{kind, storedEncoding(kind, wave), wave, options};
  std::string failure;
  bool diskFailed = false;
  const auto error = writeAtomically(files, path, options.sync, [&](OutputStream& out) {
    const bool finished = encodeFile(out, save, failure);
    diskFailed = out.failed();  // the library's own words would hide what went wrong
    return finished && (failure.empty() || diskFailed);
  });
  if (!failure.empty() && !diskFailed) return SaveResult::failure(failure);
  SaveResult result = SaveResult::from(error);
  result.addedEvenFrame = result.saved && kind.keepsSizeEven && wave.needsEvenFrame();
  return result;
}

}  // namespace plumetta
