// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "formats/caf_reader.h"
#include "formats/flac_reader.h"
#include "formats/format.h"
#include "formats/mp3_reader.h"
#include "formats/mp3_writer.h"
#include "formats/raw_file.h"
#include "formats/s1000_file.h"
#include "formats/sndfile_formats.h"
#include "formats/voc_file.h"
#include "formats/vorbis_reader.h"
#include "formats/vox_file.h"
#include "formats/wav_reader.h"
#include "formats/wav_writer.h"
#include "formats/wavpack_reader.h"
#include "platform/paths.h"

namespace plumetta {

LoadResult LoadResult::outOfMemory() {
  return {LoadStatus::noMemory, "There is not enough memory for the audio of this file.", {}, {}};
}

LoadResult LoadResult::tooLong() { return failure("The file has more frames than a document can hold."); }

SaveResult SaveResult::from(std::error_code error) {
  if (!error) return {};
  if (error == std::errc::operation_canceled) return givenUp();
  return failure(error.message());
}

bool Format::hasExtension(const std::string& extension) const {
  return std::any_of(extensions.begin(), extensions.end(), [&](const char* own) { return extension == own; });
}

namespace {

LoadResult readWavFile(FileSystem& files, const std::string& path, const OpenOptions& options, CWave& wave) {
  LoadResult result = loadWav(files, path, options, wave);
  return result.status == LoadStatus::mpegInside ? loadMp3(files, path, wave) : result;
}

LoadResult readVorbisFile(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  return loadVorbis(files, path, wave);
}

LoadResult readWavpackFile(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  return loadWavpack(files, path, wave);
}

LoadResult readVoxFile(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  return loadVox(files, path, wave);
}

LoadResult readS1000File(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  return loadS1000(files, path, wave);
}

LoadResult readRawFile(FileSystem& files, const std::string& path, const OpenOptions& options, CWave& wave) {
  return loadRaw(files, path, options.raw.value_or(RawLayout{}), wave);
}

SaveResult writeRf64File(FileSystem& files, const std::string& path, const CWave& wave,
                         const SaveOptions& options) {
  return saveRf64(files, path, wave, options.sync);
}

SaveResult writeWavFile(FileSystem& files, const std::string& path, const CWave& wave,
                        const SaveOptions& options) {
  return saveWav(files, path, wave, options.sync);
}

SaveResult writeMp3File(FileSystem& files, const std::string& path, const CWave& wave,
                        const SaveOptions& options) {
  return saveMp3(files, path, wave, options);
}

std::optional<FileHead> headOf(FileSystem& files, const std::string& path) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return std::nullopt;
  return FileHead::of(*file, extensionOf(path));
}

// In the samples of other formats, and in any noise, bytes that look like frames are found by accident.
LoadResult readMp3File(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  std::error_code error;
  if (const auto file = files.openForReading(path, error)) {
    const FileHead head = FileHead::of(*file, extensionOf(path));
    const Likeness likeness = probeMp3(head);
    const bool unclear = likeness == Likeness::byName && head.size > head.bytes.size();
    if (likeness == Likeness::none || (unclear && !holdsMp3Frames(*file))) {
      wave.setLayout(wave.channels(), 0);
      return LoadResult::failure("This is no MP3 file.");
    }
  }
  return loadMp3(files, path, wave);
}

}  // namespace

const std::vector<Format>& formatTable() {
  static const std::vector<Format> table{
      {.name = "WAV audio",
       .extensions = {"wav", "wave"},
       .probe = probeWav,
       .read = readWavFile,
       .write = writeWavFile,
       .mimeTypes = {"audio/x-wav", "audio/wav", "audio/vnd.wave"}},
      {.name = "MP3 audio",
       .extensions = {"mp3"},
       .probe = probeMp3,
       .read = readMp3File,
       .write = writeMp3File,
       .losses = lossesOfMp3,
       .mimeTypes = {"audio/mpeg"},
       .hasBitRate = true},
      {.name = "Ogg Vorbis audio",
       .extensions = {"ogg", "oga"},
       .probe = probeVorbis,
       .read = readVorbisFile,
       .write = writeSndfile<kVorbis>,
       .losses = sndfileLosses<kVorbis>,
       .mimeTypes = {"audio/ogg", "audio/x-vorbis+ogg"}},
      {.name = "WavPack audio",
       .extensions = {"wv"},
       .probe = probeWavpack,
       .read = readWavpackFile,
       .mimeTypes = {"audio/x-wavpack"}},
      {.name = "RF64 audio",
       .extensions = {"rf64"},
       .probe = probeRf64,
       .read = readWavFile,
       .write = writeRf64File,
       .mimeTypes = {"audio/x-rf64"}},
      {.name = "AIFF audio",
       .extensions = {"aiff", "aif", "aifc"},
       .probe = probeAiff,
       .read = readSndfile<kAiff>,
       .write = writeSndfile<kAiff>,
       .losses = sndfileLosses<kAiff>,
       .mimeTypes = {"audio/x-aiff", "audio/aiff", "audio/x-aifc"}},
      {.name = "Amiga IFF audio",
       .extensions = {"iff", "8svx", "16sv", "svx"},
       .probe = probeAmigaIff,
       .read = readSndfile<kAmigaIff>,
       .write = writeSndfile<kAmigaIff>,
       .losses = sndfileLosses<kAmigaIff>,
       .mimeTypes = {"audio/x-8svx"}},
      {.name = "Sun/NeXT audio",
       .extensions = {"au", "snd"},
       .probe = probeAu,
       .read = readSndfile<kAu>,
       .write = writeSndfile<kAu>,
       .losses = sndfileLosses<kAu>,
       .mimeTypes = {"audio/basic"}},
      {.name = "Creative VOC audio",
       .extensions = {"voc"},
       .probe = probeVoc,
       .read = loadVoc,
       .write = saveVoc,
       .losses = sndfileLosses<kVoc>,
       .mimeTypes = {"audio/x-voc"}},
      {.name = "CAF audio",
       .extensions = {"caf"},
       .probe = probeCaf,
       .read = loadCaf,
       .write = writeSndfile<kCaf>,
       .losses = sndfileLosses<kCaf>,
       .mimeTypes = {"audio/x-caf"}},
      {.name = "Wave64 audio",
       .extensions = {"w64"},
       .probe = probeW64,
       .read = readSndfile<kW64>,
       .write = writeSndfile<kW64>,
       .losses = sndfileLosses<kW64>,
       .mimeTypes = {"audio/x-w64"}},
      {.name = "FLAC audio",
       .extensions = {"flac"},
       .probe = probeFlac,
       .read = loadFlac,
       .write = writeSndfile<kFlac>,
       .losses = sndfileLosses<kFlac>,
       .mimeTypes = {"audio/flac"}},
      {.name = "Opus audio",
       .extensions = {"opus"},
       .probe = probeOpus,
       .read = readSndfile<kOpus>,
       .write = writeSndfile<kOpus>,
       .losses = sndfileLosses<kOpus>,
       .mimeTypes = {"audio/x-opus+ogg"}},
      {.name = "Ogg FLAC audio",
       .extensions = {"oga"},
       .probe = probeOggFlac,
       .read = loadFlac,
       .mimeTypes = {"audio/x-flac+ogg"}},
      {.name = "Dialogic VOX audio",
       .extensions = {"vox"},
       .probe = probeVox,
       .read = readVoxFile,
       .write = saveVox,
       .losses = lossesOfVox,
       .mimeTypes = {"audio/x-dialogic-vox"}},
      {.name = "S1000 sample",
       .extensions = {"s", "s1"},
       .probe = probeS1000,
       .read = readS1000File,
       .write = saveS1000,
       .losses = lossesOfS1000,
       .mimeTypes = {"audio/x-s1000-sample"}},
      {.name = "Raw samples",
       .extensions = {"raw", "pcm", "bin"},
       .probe = probeRaw,
       .read = readRawFile,
       .write = saveRaw,
       .losses = lossesOfRaw},
  };
  return table;
}

const Format& rawFormat() {
  const auto& table = formatTable();
  return *std::find_if(table.begin(), table.end(), [](const Format& f) { return f.read == readRawFile; });
}

std::vector<const Format*> formatsOfContent(FileSystem& files, const std::string& path) {
  std::vector<const Format*> formats;
  const auto head = headOf(files, path);
  if (!head) return formats;
  // Twice the likeness, and one more where the extension agrees; of equals the first of the table.
  std::vector<int> scores;
  for (const Format& format : formatTable()) {
    if (format.read == nullptr) continue;
    const Likeness likeness = format.probe(*head);
    const bool named = format.hasExtension(head->extension);
    if (likeness == Likeness::none || (likeness == Likeness::byName && !named)) continue;
    const int score = 2 * static_cast<int>(likeness) + (named ? 1 : 0);
    const auto place =
        std::ranges::find_if(scores, [=](int other) { return other < score; }) - scores.begin();
    scores.insert(scores.begin() + place, score);
    formats.insert(formats.begin() + place, &format);
  }
  return formats;
}

const Format* formatOfContent(FileSystem& files, const std::string& path) {
  const auto formats = formatsOfContent(files, path);
  return formats.empty() ? nullptr : formats.front();
}

const Format* writableFormatOfName(const std::string& path) {
  const std::string extension = extensionOf(path);
  for (const Format& format : formatTable()) {
    if (format.write != nullptr && format.hasExtension(extension)) return &format;
  }
  return nullptr;
}

}  // namespace plumetta
