// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <string_view>

#include "formats/format.h"
#include "formats/mp3_reader.h"
#include "formats/mp3_writer.h"
#include "formats/raw_file.h"
#include "formats/s1000_file.h"
#include "formats/sndfile_formats.h"
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

bool FileHead::has(size_t offset, std::string_view text) const {
  return bytes.size() >= offset + text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

namespace {

LoadResult readWavFile(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  LoadResult result = loadWav(files, path, wave);
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
  FileHead head{std::vector<uint8_t>(FileHead::kBytes), file->size(), extensionOf(path)};
  head.bytes.resize(file->read(head.bytes.data(), head.bytes.size(), error));
  return head;
}

// In the samples of other formats bytes that look like frames are found by accident, and decoded to noise.
LoadResult readMp3File(FileSystem& files, const std::string& path, const OpenOptions&, CWave& wave) {
  const auto head = headOf(files, path);
  if (head && probeMp3(*head) == Likeness::none) return LoadResult::failure("This is no MP3 file.");
  return loadMp3(files, path, wave);
}

}  // namespace

const std::vector<Format>& formatTable() {
  static const std::vector<Format> table{
      {"WAV audio", {"wav", "wave"}, probeWav, readWavFile, writeWavFile, nullptr},
      {"MP3 audio", {"mp3"}, probeMp3, readMp3File, writeMp3File, lossesOfMp3, true},
      {"Ogg Vorbis audio",
       {"ogg", "oga"},
       probeVorbis,
       readVorbisFile,
       writeSndfile<kVorbis>,
       sndfileLosses<kVorbis>},
      {"WavPack audio", {"wv"}, probeWavpack, readWavpackFile, nullptr, nullptr},
      {"AIFF audio",
       {"aiff", "aif", "aifc"},
       probeAiff,
       readSndfile<kAiff>,
       writeSndfile<kAiff>,
       sndfileLosses<kAiff>},
      {"Amiga IFF audio",
       {"iff", "8svx", "16sv", "svx"},
       probeAmigaIff,
       readSndfile<kAmigaIff>,
       writeSndfile<kAmigaIff>,
       sndfileLosses<kAmigaIff>},
      {"Sun/NeXT audio", {"au", "snd"}, probeAu, readSndfile<kAu>, writeSndfile<kAu>, sndfileLosses<kAu>},
      {"Creative VOC audio", {"voc"}, probeVoc, readSndfile<kVoc>, writeSndfile<kVoc>, sndfileLosses<kVoc>},
      {"CAF audio", {"caf"}, probeCaf, readSndfile<kCaf>, writeSndfile<kCaf>, sndfileLosses<kCaf>},
      {"Wave64 audio", {"w64"}, probeW64, readSndfile<kW64>, writeSndfile<kW64>, sndfileLosses<kW64>},
      {"FLAC audio", {"flac"}, probeFlac, readSndfile<kFlac>, writeSndfile<kFlac>, sndfileLosses<kFlac>},
      {"Opus audio", {"opus"}, probeOpus, readSndfile<kOpus>, writeSndfile<kOpus>, sndfileLosses<kOpus>},
      {"Ogg FLAC audio", {"oga"}, probeOggFlac, readSndfile<kOggFlac>, nullptr, nullptr},
      {"Dialogic VOX audio", {"vox"}, probeVox, readVoxFile, saveVox, lossesOfVox},
      {"S1000 sample", {"s", "s1"}, probeS1000, readS1000File, saveS1000, lossesOfS1000},
      {"Raw samples", {"raw", "pcm", "bin"}, probeRaw, readRawFile, saveRaw, lossesOfRaw},
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
