// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/spectrum_file.h"

#include "dsp/spectrum_text.h"
#include "formats/text_export.h"

namespace plumetta {
namespace {

// Far beyond the spectrum of most lines and channels, which has about 10 MB.
constexpr uint64_t kMostBytes = uint64_t{1} << 28;

}  // namespace

SaveResult saveSpectrum(FileSystem& files, const std::string& path, const SpectrumRecord& record) {
  return writeTextFile(files, path, spectrumText(record));
}

LoadResult loadSpectrum(FileSystem& files, const std::string& path, SpectrumRecord& record) {
  std::error_code error;
  const auto file = files.openForReading(path, error);
  if (!file) return LoadResult::failure(error.message());
  if (file->size() > kMostBytes) return LoadResult::failure("It is too long for a spectrum.");
  std::string text(static_cast<size_t>(file->size()), '\0');
  size_t read = 0;
  while (read < text.size() && !error) {
    const size_t part = file->read(text.data() + read, text.size() - read, error);
    if (part == 0) break;
    read += part;
  }
  if (error) return LoadResult::failure(error.message());
  text.resize(read);
  if (!parseSpectrum(text, record)) return LoadResult::failure("It is no spectrum, or a damaged one.");
  return {};
}

}  // namespace plumetta
