// SPDX-License-Identifier: GPL-3.0-or-later
// Opening, saving and exporting: the part of a document that meets files and tells the person how it went.
#include <algorithm>

#include "doc/document.h"
#include "doc/sonogram_file.h"
#include "doc/spectrum_file.h"
#include "dsp/statistics.h"
#include "formats/sample_codec.h"
#include "formats/text_export.h"
#include "formats/wav_writer.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

// Hands a progress to the buffer for the duration of a read or write.
class ProgressOnWave {
 public:
  ProgressOnWave(CWave& wave, Prompter& prompter, const std::string& title)
      : wave_(wave), scope_(prompter, title) {
    wave_.progress = scope_.progress();
  }
  ~ProgressOnWave() { wave_.progress = {}; }

 private:
  CWave& wave_;
  ProgressScope scope_;
};

std::string unableTo(const char* verb, const std::string& path, const std::string& reason) {
  return std::string("Unable to ") + verb + " " + path + "\n" + reason;
}

}  // namespace

// Why a file that no format knows can't be opened: what is wrong with the file itself comes first.
FileOutcome CPlumettaDoc::refuseUnknownContent(const std::string& path, const std::string& shownAs) {
  std::error_code error;
  const auto file = services_.files.openForReading(path, error);
  const std::string reason = file ? "No format that can be read was found in it." : error.message();
  prompter().message(unableTo("open", shownAs, reason));
  return FileOutcome::fileError;
}

FileOutcome CPlumettaDoc::load(const std::string& path, const OpenOptions& given,
                               const std::string& shownAs) {
  const std::string& shown = shownAs.empty() ? path : shownAs;
  OpenOptions options = given;
  options.keepForeignChunks = options.keepForeignChunks || services_.settings.keepForeignChunks;
  const BusyScope busy(prompter());
  const Format* format = options.raw ? &rawFormat() : formatOfContent(services_.files, path);
  if (format == nullptr) return refuseUnknownContent(path, shown);
  LoadResult result;
  {
    const ProgressOnWave progress(wave_, prompter(), "Opening " + fileNameOf(shown));
    result = format->read(services_.files, path, options, wave_);
  }
  if (result.status == LoadStatus::cancelled) return FileOutcome::cancelled;
  if (result.status != LoadStatus::loaded) {
    prompter().message(result.reasonIsMessage ? result.reason : unableTo("open", shown, result.reason));
    return FileOutcome::fileError;
  }
  textKinds_ = std::move(result.textKinds);
  view_ = {};
  tellPlayback();
  setTitle(fileNameOf(path));
  setModified(false);
  samplesChanged();
  for (const std::string& warning : result.warnings) prompter().message(shown + "\n" + warning);
  return FileOutcome::done;
}

FileOutcome CPlumettaDoc::report(const SaveResult& result, const std::string& path) {
  if (result.saved) return FileOutcome::done;
  if (result.cancelled) return FileOutcome::cancelled;
  if (!result.message.empty()) {
    prompter().message(result.message);
    return FileOutcome::refused;
  }
  prompter().message(unableTo("save", path, result.reason));
  return FileOutcome::fileError;
}

FileOutcome CPlumettaDoc::writeWithProgress(const std::string& path, const std::string& title,
                                            const std::function<SaveResult()>& write) {
  const BusyScope busy(prompter());
  SaveResult result;
  {
    const ProgressOnWave progress(wave_, prompter(), title);
    result = write();
  }
  return report(result, path);
}

// Tells what a file of this format will not hold, once a document and format; false when the person would
// rather not save.
bool CPlumettaDoc::confirmLosses(const Format& format, const std::string& path) {
  if (std::ranges::count(formatsOfLosses_, &format) > 0) return true;
  std::vector<std::string> lost;
  if (format.losses != nullptr) lost = format.losses(wave_);
  for (const std::string& kind : textKinds_) lost.push_back("text information (" + kind + ")");
  if (lost.empty()) return true;
  std::string list;
  for (const std::string& one : lost) list += (list.empty() ? "" : ", ") + one;
  if (!prompter().confirmLoss("Saving " + fileNameOf(path) + " as " + format.name +
                              " does not keep: " + list)) {
    return false;
  }
  formatsOfLosses_.push_back(&format);
  return true;
}

FileOutcome CPlumettaDoc::save(const std::string& path, const SaveOptions& options) {
  const Format* format = writableFormatOfName(path);
  if (format == nullptr) {
    return report(SaveResult::failure("The extension names no format that can be written."), path);
  }
  if (!confirmLosses(*format, path)) return FileOutcome::cancelled;
  bool addedEvenFrame = false;
  const auto outcome = writeWithProgress(path, "Saving " + fileNameOf(path), [&] {
    const SaveResult result = format->write(services_.files, path, wave_, options);
    addedEvenFrame = result.addedEvenFrame;
    return result;
  });
  if (outcome != FileOutcome::done) return outcome;
  if (addedEvenFrame) {
    const AudioLockHeld lock(services_.audioLock);
    wave_.appendEvenFrame();
  }
  textKinds_.clear();  // the file that the document stands for has none now
  wave_.setFileName(path);
  setTitle(fileNameOf(path));
  setModified(false);
  samplesChanged();
  return outcome;
}

FileOutcome CPlumettaDoc::saveRange(int32_t from, int32_t to, const std::string& path) {
  return writeWithProgress(path, "Saving " + fileNameOf(path), [&] {
    return saveWavRange(services_.files, path, wave_, from, to, SyncToDisk::yes);
  });
}

FileOutcome CPlumettaDoc::split(const std::string& prefix) {
  return writeWithProgress(prefix, "Saving regions",
                           [&] { return splitAtMarkers(services_.files, prefix, wave_, SyncToDisk::yes); });
}

FileOutcome CPlumettaDoc::exportText(const std::string& path) {
  return writeWithProgress(path, "Exporting " + fileNameOf(path),
                           [&] { return exportWaveAsText(services_.files, path, wave_, SyncToDisk::yes); });
}

std::string CPlumettaDoc::statistics(bool includeLevels) const {
  return statisticsReport(wave_, view_.lowerBound(), view_.upperBound(), includeLevels);
}

FileOutcome CPlumettaDoc::saveStatistics(const std::string& path, bool includeLevels) {
  return report(writeTextFile(services_.files, path, kStatisticsFileHead + statistics(includeLevels)), path);
}

FileOutcome CPlumettaDoc::saveSpectrum(const std::string& path, SpectrumSettings settings) {
  const Range range = selectionOrAll();
  return writeWithProgress(path, "Computing the spectrum", [&]() -> SaveResult {
    const auto record = averagedSpectrum(wave_, {range.first, range.last}, settings, wave_.progress);
    if (!record) return SaveResult::givenUp();
    return plumetta::saveSpectrum(services_.files, path, *record);
  });
}

FileOutcome CPlumettaDoc::saveSonogram(const std::string& path, const SonogramFileSettings& settings) {
  const Range range = selectionOrAll();
  return writeWithProgress(path, "Computing the spectra", [&] {
    return plumetta::saveSonogram(services_.files, path, wave_, {range.first, range.last}, settings);
  });
}

FileOutcome CPlumettaDoc::dumpFloats(const std::string& path) {
  return writeWithProgress(path, "Writing " + fileNameOf(path), [&] {
    return SaveResult::from(writeAtomically(services_.files, path, SyncToDisk::yes, [&](OutputStream& out) {
      const SampleFormat floats{Encoding::float32, ByteOrder::little, SignType::isSigned};
      return encodeSamples(out, floats, wave_.samples(), wave_.frames(), wave_.channels(), wave_.progress) !=
             CodecResult::cancelled;
    }));
  });
}

}  // namespace plumetta
