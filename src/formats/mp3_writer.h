// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "formats/format.h"
#include "formats/mp3_encoder.h"

namespace plumetta {

// What a person chooses from, kbit/s.
inline constexpr std::array<int, 16> kMp3BitRates{20, 24,  32,  40,  48,  56,  64,  80,
                                                  96, 112, 128, 160, 192, 224, 256, 320};

// Shown for every way in which writing an MP3 file can fail.
inline constexpr const char* kMp3ExportFailed =
    "Unable to export mp3 file. Make sure lame encoder is installed";

// The stream in which a buffer loses least. The sample rate is kept where MP3 has it; one that it hasn't is
// brought to the next above; one beyond 48000 Hz to the largest that divides it, else to 48000. The bit rate
// is the next one that the sample rate's version of MPEG has from the wanted one on, or its largest; below 32
// kbit/s, which the rates from 32000 Hz on haven't got, the sample rate is halved. Nothing for more than two
// channels and for numbers that no encoder takes.
std::optional<Mp3Stream> mp3StreamFor(int channels, uint32_t sampleRate, int bitRateKbits);

using Mp3EncoderSource = std::function<std::unique_ptr<Mp3Encoder>()>;

// Writes the buffer at a constant bit rate, samples at 16 bits, with the header that tells players the
// length.
SaveResult saveMp3(FileSystem& files, const std::string& path, const CWave& wave, const SaveOptions& options,
                   const Mp3EncoderSource& encoderSource = loadMp3Encoder);

std::vector<std::string> lossesOfMp3(const CWave& wave);

}  // namespace plumetta
