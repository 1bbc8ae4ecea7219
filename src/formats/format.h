// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/wave.h"
#include "formats/atomic_file.h"
#include "formats/sample_codec.h"
#include "platform/file_system.h"

namespace plumetta {

enum class LoadStatus {
  loaded = 0,
  failed = -1,      // can't be opened, not supported, or no memory; `reason` says which
  mpegInside = -2,  // MPEG layer 3 inside RIFF: for another decoder
  cancelled = -3,
  noMemory = -4,  // for the samples
};

struct LoadResult {
  LoadStatus status = LoadStatus::loaded;
  std::string reason;                  // one sentence, when the load failed
  std::vector<std::string> warnings;   // what the person should know about a file that did load
  std::vector<std::string> textKinds;  // text information that the buffer doesn't keep, "ID3"

  bool reasonIsMessage = false;  // the reason is shown as it stands, without the name of the file

  static LoadResult failure(std::string why) { return {LoadStatus::failed, std::move(why), {}, {}}; }
  static LoadResult message(std::string text) { return {LoadStatus::failed, std::move(text), {}, {}, true}; }
  static LoadResult outOfMemory();
  static LoadResult tooLong();
};

struct SaveResult {
  bool saved = true;
  bool cancelled = false;
  std::string reason;           // one sentence, when it failed
  std::string message;          // set where the failure has a message of its own, shown instead of the reason
  bool addedEvenFrame = false;  // the file has one silent frame more than the buffer

  static SaveResult failure(std::string why) { return {false, false, std::move(why), {}, false}; }
  static SaveResult givenUp() { return {false, true, {}, {}, false}; }
  static SaveResult from(std::error_code error);
};

// How a file without a header stores its samples.
struct RawLayout {
  uint32_t sampleRate = 44100;
  int channels = 1;
  SampleFormat sample;
  uint64_t fileOffset = 0;  // bytes ahead of the first sample
};

struct OpenOptions {
  std::optional<RawLayout> raw;    // set: the file is read as raw samples, whatever is in it
  bool keepForeignChunks = false;  // unknown chunks of a WAV stay with the buffer as extra chunks
};

struct SaveOptions {
  SyncToDisk sync = SyncToDisk::yes;
  int bitRateKbits = 128;  // of formats that have one
};

// What a probe can tell from the beginning of a file.
struct FileHead {
  static constexpr size_t kBytes = 4096;

  std::vector<uint8_t> bytes;  // the first kBytes, fewer of a shorter file
  uint64_t size = 0;           // of the whole file
  std::string extension;       // lower case
  uint64_t tagBytes = 0;       // of an ID3 version 2 tag ahead of everything; 0 also when it claims too much
  std::vector<uint8_t> behindTag = {};  // the first kBytes behind that tag; empty without one

  // Reads the head of a file, which stands at its start before and after.
  static FileHead of(File& file, std::string extension);

  // Where the audio begins: some programs put a tag ahead of formats that know nothing of it.
  const std::vector<uint8_t>& audio() const { return tagBytes > 0 ? behindTag : bytes; }
  bool has(size_t offset, std::string_view text) const { return isAt(bytes, offset, text); }
  bool audioHas(size_t offset, std::string_view text) const { return isAt(audio(), offset, text); }

 private:
  static bool isAt(const std::vector<uint8_t>& bytes, size_t offset, std::string_view text);
};

enum class Likeness {
  none,
  byName,    // nothing in the content tells; taken when only the extension speaks
  possible,  // the content may be this; among several the extension decides
  certain,
};

// A kind of audio file: how it is recognised, read and written. Readers and writers report to the buffer's
// progress and answer a request to stop within 200 ms.
struct Format {
  const char* name;                     // as dialogs show it
  std::vector<const char*> extensions;  // lower case, the usual one first
  Likeness (*probe)(const FileHead& head);
  LoadResult (*read)(FileSystem& files, const std::string& path, const OpenOptions& options,
                     CWave& wave) = nullptr;
  SaveResult (*write)(FileSystem& files, const std::string& path, const CWave& wave,
                      const SaveOptions& options) = nullptr;
  // What a saved file would not hold of the buffer, each in a few words ("markers", "24 bits: 16 are kept");
  // null when it holds everything.
  std::vector<std::string> (*losses)(const CWave& wave) = nullptr;
  std::vector<const char*> mimeTypes = {};  // as desktops register them, the usual one first
  bool hasBitRate = false;                  // a person chooses SaveOptions::bitRateKbits

  bool hasExtension(const std::string& extension) const;
};

// Every format that the editor knows, in the order in which they are tried.
const std::vector<Format>& formatTable();
// The formats that the file may have by its content, the likeliest first.
std::vector<const Format*> formatsOfContent(FileSystem& files, const std::string& path);
// The row of files without a header, which OpenOptions::raw describes.
const Format& rawFormat();
// The format whose content the file has; null when nobody knows it.
const Format* formatOfContent(FileSystem& files, const std::string& path);
// The format that a name asks for when saving; null when none can write it.
const Format* writableFormatOfName(const std::string& path);

}  // namespace plumetta
