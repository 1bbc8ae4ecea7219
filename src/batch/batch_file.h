// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <string_view>

#include "batch/batch_plan.h"
#include "core/audio_lock.h"
#include "core/block_processor.h"
#include "core/wave.h"

namespace plumetta {

enum class BatchStop { no, afterFile, atOnce };

// Works on one file after another: a working document of its own, and nothing that another one uses. One
// thread.
class BatchWorker {
 public:
  // `chainPlugins` is how many plug-ins the chain had when the batch began.
  BatchWorker(FileSystem& files, const BatchSettings& settings, const std::atomic<BatchStop>& stop,
              ChainProcessor* chain, int chainPlugins);
  BatchWorker(const BatchWorker&) = delete;
  BatchWorker& operator=(const BatchWorker&) = delete;

  // Loads, changes and saves one file; `log` gets its texts.
  void process(const BatchFolder& folder, const BatchEntry& entry,
               const std::function<void(std::string_view)>& log);

 private:
  using Log = std::function<void(std::string_view)>;

  static bool goOn(float fractionDone, void* self);
  bool cancelled() const { return stop_ == BatchStop::atOnce; }
  void processLoaded(const std::string& resultPath, const BatchEntry& entry, const Log& log);
  bool apply();
  bool save(const std::string& path);
  bool mayBeWritten(const std::string& path) const;
  void releaseWave();

  FileSystem& files_;
  const BatchSettings& settings_;
  const std::atomic<BatchStop>& stop_;
  ChainProcessor* const chain_;
  const int chainPlugins_;
  const std::string realInput_, realOutput_;
  AudioLock lock_;  // nobody else has these samples; the chain asks for one
  CWave wave_;
};

}  // namespace plumetta
