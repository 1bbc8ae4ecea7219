// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/batch_file.h"

#include "batch/batch_functions.h"
#include "batch/batch_log.h"
#include "batch/batch_readers.h"
#include "doc/version_chunk.h"
#include "platform/file_identity.h"
#include "platform/paths.h"

namespace plumetta {

BatchWorker::BatchWorker(FileSystem& files, const BatchSettings& settings, const std::atomic<BatchStop>& stop,
                         ChainProcessor* chain, int chainPlugins)
    : files_(files),
      settings_(settings),
      stop_(stop),
      chain_(chain),
      chainPlugins_(chainPlugins),
      realInput_(realPath(settings.input)),
      realOutput_(realPath(settings.output)) {
  addVersionChunk(wave_);
  wave_.progress = {&BatchWorker::goOn, this};
}

bool BatchWorker::goOn(float, void* self) { return !static_cast<BatchWorker*>(self)->cancelled(); }

void BatchWorker::process(const BatchFolder& folder, const BatchEntry& entry, const Log& log) {
  log(entry.name);
  if (entry.walkedAlready) return log(batch_text::kWalkedAlready);
  const LoadStatus status = loadForBatch(files_, joinPath(folder.input, entry.name), wave_);
  if (status == LoadStatus::cancelled) {
    log(batch_text::kCancelled);
  } else if (status != LoadStatus::loaded) {
    log(batch_text::kUnsupported);
  } else {
    log(batch_text::kExtracted);
    processLoaded(joinPath(folder.output, entry.resultName), entry, log);
  }
  releaseWave();
}

void BatchWorker::processLoaded(const std::string& resultPath, const BatchEntry& entry, const Log& log) {
  if (!apply() && !cancelled()) return log(batch_text::kNotApplied);
  const bool saved = !cancelled() && save(resultPath);
  if (cancelled() && !saved) return log(batch_text::kCancelled);
  if (!saved) {
    log(batch_text::unableToSave(resultPath));
  } else if (entry.renamed) {
    log(batch_text::savedAs(entry.resultName));
  }
  log(batch_text::kApplied);
}

bool BatchWorker::apply() {
  const BatchFunction& function = batchFunctions()[static_cast<size_t>(settings_.function)];
  if (!function.usesChain) return function.apply == nullptr || function.apply(wave_);
  if (chain_ == nullptr) return false;
  // Equal ends mean all frames. What is left of a chain that has lost a plug-in isn't what was asked for.
  const bool done = chain_->applyTo(wave_, lock_, 0, 0, wave_.progress) == ChainResult::done;
  return done && chain_->activePlugins() == chainPlugins_;
}

bool BatchWorker::save(const std::string& path) {
  const BatchFunction& function = batchFunctions()[static_cast<size_t>(settings_.function)];
  const Format* format = writableFormatOfName(path);
  if (format == nullptr || !mayBeWritten(path)) return false;
  SaveOptions options;
  options.sync = SyncToDisk::no;
  if (function.mp3Kbits > 0) options.bitRateKbits = function.mp3Kbits;
  return format->write(files_, path, wave_, options).saved;
}

// A link in the output folder may lead back into the input folder.
bool BatchWorker::mayBeWritten(const std::string& path) const {
  if (settings_.mayChangeInput || files_.kind(path) == FileKind::missing) return true;
  const std::string real = realPath(path);
  return !liesInFolder(real, realInput_) || liesInFolder(real, realOutput_);
}

// Gives the memory back, and everything that the file has left in the buffer.
void BatchWorker::releaseWave() {
  wave_.create(44100, 1, 16, 0, kFormatPcm);
  wave_.loops = {};  // with the header of a sampler
  wave_.setActive(ActiveOperation::all, 0);
}

}  // namespace plumetta
