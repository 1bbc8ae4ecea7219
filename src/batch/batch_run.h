// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

#include "batch/batch_file.h"
#include "batch/batch_log.h"
#include "batch/batch_plan.h"

namespace plumetta {

struct BatchProgress {
  size_t done = 0;   // files
  size_t total = 0;  // 0 until the folder has been walked
  std::string file;  // the one that was begun last
};

// One batch, from the walk of the input folder to the closing banner.
class BatchRun {
 public:
  // `log` gets every text of the log in order, one call at a time, from threads of the batch. `chain` is for
  // the function that applies one, and outlives the batch.
  BatchRun(FileSystem& files, BatchSettings settings, OrderedLog::Sink log, ChainProcessor* chain = nullptr);

  // Works until all is done or somebody asks to stop; on the calling thread and as many more as there are
  // jobs beyond one. Once.
  void run();

  // Ends the batch after the files in work; asked again, gives those up as well. Any thread.
  void requestStop();

  // Any thread.
  BatchProgress progress() const;

 private:
  void makeFolders() const;
  void work(OrderedLog& log);
  void workOn(BatchWorker& worker, OrderedLog& log, size_t turn);
  size_t entryOf(size_t turn) const;
  size_t turns() const;

  FileSystem& files_;
  const BatchSettings settings_;
  const OrderedLog::Sink sink_;
  ChainProcessor* const chain_;
  const int chainPlugins_;
  BatchPlan plan_;
  std::atomic<BatchStop> stop_{BatchStop::no};
  std::atomic<size_t> nextTurn_{0};

  mutable std::mutex progressMutex_;
  BatchProgress progress_;
};

}  // namespace plumetta
