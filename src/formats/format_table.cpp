// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <string_view>

#include "formats/format.h"
#include "formats/sndfile_formats.h"
#include "formats/voc_file.h"
#include "formats/wav_reader.h"
#include "formats/wav_writer.h"
#include "platform/paths.h"

namespace plumetta {

LoadResult LoadResult::outOfMemory() {
  return {LoadStatus::noMemory, "There is not enough memory for the audio of this file.", {}, {}};
}

LoadResult LoadResult::tooLong() { return failure("The file has more frames than a document can hold."); }

SaveResult SaveResult::from(std::error_code error) {
  if (!error) return {};
  if (error == std::errc::operation_canceled) return {false, true, {}};
  return failure(error.message());
}

bool Format::hasExtension(const std::string& extension) const {
  return std::any_of(extensions.begin(), extensions.end(), [&](const char* own) { return extension == own; });
}

bool FileHead::has(size_t offset, std::string_view text) const {
  return bytes.size() >= offset + text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char wanted, uint8_t present) { return static_cast<uint8_t>(wanted) == present; });
}

namespace {

SaveResult writeRf64File(FileSystem& files, const std::string& path, const CWave& wave,
                         const SaveOptions& options) {
  return saveRf64(files, path, wave, options.sync);
}

SaveResult writeWavFile(FileSystem& files, const std::string& path, const CWave& wave,
                        const SaveOptions& options) {
  return saveWav(files, path, wave, options.sync);
}

std::optional<FileHead> headOf(FileSystem& files, const std::string& path) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return std::nullopt;
  FileHead head{std::vector<uint8_t>(FileHead::kBytes), file->size(), extensionOf(path)};
  head.bytes.resize(file->read(head.bytes.data(), head.bytes.size(), error));
  return head;
}

}  // namespace

const std::vector<Format>& formatTable() {
  static const std::vector<Format> table{
      {"WAV audio",
       {"wav", "wave"},
       probeWav,
       loadWav,
       writeWavFile,
       nullptr,
       {"audio/x-wav", "audio/wav", "audio/vnd.wave"},
       true},
      {"RF64 audio", {"rf64"}, probeRf64, loadWav, writeRf64File, nullptr, {"audio/x-rf64"}, true},
      {"AIFF audio",
       {"aiff", "aif", "aifc"},
       probeAiff,
       readSndfile<kAiff>,
       writeSndfile<kAiff>,
       sndfileLosses<kAiff>,
       {"audio/x-aiff", "audio/aiff", "audio/x-aifc"},
       true},
      {"Amiga IFF audio",
       {"iff", "8svx", "16sv", "svx"},
       probeAmigaIff,
       readSndfile<kAmigaIff>,
       writeSndfile<kAmigaIff>,
       sndfileLosses<kAmigaIff>,
       {"audio/x-8svx"}},
      {"Sun/NeXT audio",
       {"au", "snd"},
       probeAu,
       readSndfile<kAu>,
       writeSndfile<kAu>,
       sndfileLosses<kAu>,
       {"audio/basic"}},
      {"Creative VOC audio", {"voc"}, probeVoc, loadVoc, saveVoc, sndfileLosses<kVoc>, {"audio/x-voc"}},
      {"CAF audio",
       {"caf"},
       probeCaf,
       readSndfile<kCaf>,
       writeSndfile<kCaf>,
       sndfileLosses<kCaf>,
       {"audio/x-caf"}},
      {"Wave64 audio",
       {"w64"},
       probeW64,
       readSndfile<kW64>,
       writeSndfile<kW64>,
       sndfileLosses<kW64>,
       {"audio/x-w64"}},
      {"FLAC audio",
       {"flac"},
       probeFlac,
       readSndfile<kFlac>,
       writeSndfile<kFlac>,
       sndfileLosses<kFlac>,
       {"audio/flac"}},
      {"Ogg Vorbis audio",
       {"ogg", "oga"},
       probeVorbis,
       nullptr,
       writeSndfile<kVorbis>,
       sndfileLosses<kVorbis>,
       {"audio/ogg", "audio/x-vorbis+ogg"}},
      {"Opus audio",
       {"opus"},
       probeOpus,
       readSndfile<kOpus>,
       writeSndfile<kOpus>,
       sndfileLosses<kOpus>,
       {"audio/x-opus+ogg"}},
      {"Ogg FLAC audio", {"oga"}, probeOggFlac, loadOggFlac, nullptr, nullptr, {"audio/x-flac+ogg"}},
  };
  return table;
}

const Format* formatOfContent(FileSystem& files, const std::string& path) {
  const auto head = headOf(files, path);
  if (!head) return nullptr;
  // Twice the likeness, and one more where the extension agrees; of equals the first of the table.
  const Format* best = nullptr;
  int bestScore = 0;
  for (const Format& format : formatTable()) {
    if (format.read == nullptr) continue;
    const Likeness likeness = format.probe(*head);
    const bool named = format.hasExtension(head->extension);
    if (likeness == Likeness::none || (likeness == Likeness::byName && !named)) continue;
    const int score = 2 * static_cast<int>(likeness) + (named ? 1 : 0);
    if (score > bestScore) {
      best = &format;
      bestScore = score;
    }
  }
  return best;
}

const Format* writableFormatOfName(const std::string& path) {
  const std::string extension = extensionOf(path);
  for (const Format& format : formatTable()) {
    if (format.write != nullptr && format.hasExtension(extension)) return &format;
  }
  return nullptr;
}

}  // namespace plumetta
