// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/batch_run.h"

#include <system_error>
#include <thread>
#include <vector>

namespace plumetta {

BatchRun::BatchRun(FileSystem& files, BatchSettings settings, OrderedLog::Sink log, ChainProcessor* chain)
    : files_(files),
      settings_(std::move(settings)),
      sink_(std::move(log)),
      chain_(chain),
      chainPlugins_(chain != nullptr ? chain->activePlugins() : 0) {}

void BatchRun::run() {
  plan_ = planBatch(files_, settings_, [this] { return stop_ != BatchStop::no; });
  {
    const std::lock_guard lock(progressMutex_);
    progress_.total = turns();
  }
  makeFolders();
  OrderedLog log(sink_);
  std::vector<std::thread> helpers;
  try {
    for (int job = 1; job < settings_.jobs; ++job) helpers.emplace_back([&] { work(log); });
  } catch (const std::system_error&) {
    // Those that came do the work.
  }
  work(log);
  for (std::thread& helper : helpers) helper.join();
  sink_(batch_text::kBanner);
}

void BatchRun::requestStop() {
  BatchStop none = BatchStop::no;
  if (!stop_.compare_exchange_strong(none, BatchStop::afterFile)) stop_ = BatchStop::atOnce;
}

BatchProgress BatchRun::progress() const {
  const std::lock_guard lock(progressMutex_);
  return progress_;
}

// A folder that can't be made is told by the files that can't be saved there.
void BatchRun::makeFolders() const {
  for (const BatchFolder& folder : plan_.folders) {
    if (stop_ != BatchStop::no) return;
    files_.makeFolders(folder.output);
  }
}

size_t BatchRun::entryOf(size_t turn) const {
  return turn * static_cast<size_t>(settings_.shards) + static_cast<size_t>(settings_.shard);
}

size_t BatchRun::turns() const {
  const auto shards = static_cast<size_t>(settings_.shards);
  const auto first = static_cast<size_t>(settings_.shard);
  return plan_.entries.size() <= first ? 0 : (plan_.entries.size() - first - 1) / shards + 1;
}

void BatchRun::work(OrderedLog& log) {
  BatchWorker worker(files_, settings_, stop_, chain_, chainPlugins_);
  while (stop_ == BatchStop::no) {
    const size_t turn = nextTurn_++;
    if (turn >= turns()) return;
    workOn(worker, log, turn);
  }
}

void BatchRun::workOn(BatchWorker& worker, OrderedLog& log, size_t turn) {
  const BatchEntry& entry = plan_.entries[entryOf(turn)];
  {
    const std::lock_guard lock(progressMutex_);
    progress_.file = entry.name;
  }
  worker.process(plan_.folders[entry.folder], entry, [&](std::string_view text) { log.append(turn, text); });
  log.finish(turn);
  const std::lock_guard lock(progressMutex_);
  ++progress_.done;
}

}  // namespace plumetta
