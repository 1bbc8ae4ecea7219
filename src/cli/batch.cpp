// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli batch`: one function over every file of a folder.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "app/application.h"
#include "app/plugin_library.h"
#include "batch/batch_functions.h"
#include "batch/batch_run.h"
#include "cli/batch_logs.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"
#include "platform/file_identity.h"
#include "platform/interrupt.h"
#include "platform/paths.h"
#include "platform/terminal.h"

namespace plumetta {
namespace {

constexpr auto kWatchInterval = std::chrono::milliseconds(50);
constexpr int kMostJobs = 1024;

struct BatchCall {
  BatchSettings settings;
  std::string chain, log;
  std::vector<std::string> operands;  // FUNCTION, IN and OUT
};

// K/N.
void readShard(WordReader& words, BatchSettings& settings) {
  const std::string text = words.atEnd() ? std::string() : words.take();
  const size_t slash = text.find('/');
  const auto shard = numberIn<int>(std::string_view(text).substr(0, slash));
  const auto shards =
      slash == std::string::npos ? std::nullopt : numberIn<int>(std::string_view(text).substr(slash + 1));
  if (!shard || !shards || *shard < 0 || *shard >= *shards) {
    return words.fail("batch: --shard wants K/N, K from 0 to N - 1");
  }
  settings.shard = *shard;
  settings.shards = *shards;
}

void readOption(WordReader& words, const std::string& option, BatchCall& call) {
  const auto isJobCount = [](int number) { return number >= 1 && number <= kMostJobs; };
  if (option == "--recurse") {
    call.settings.recurse = true;
  } else if (option == "--jobs") {
    std::optional<int> jobs;
    readNumber(words, "batch", option, isJobCount, jobs);
    call.settings.jobs = jobs.value_or(1);
  } else if (option == "--shard") {
    readShard(words, call.settings);
  } else if (option == "--chain" && !words.atEnd()) {
    call.chain = absolutePath(words.take());
  } else if (option == "--log" && !words.atEnd()) {
    call.log = absolutePath(words.take());
  } else {
    words.fail("batch: what is '" + option + "'?");
  }
}

// An empty word is no folder, not the current one.
std::string folderOperand(const std::string& word) { return word.empty() ? word : absolutePath(word); }

BatchCall readCall(WordReader& words) {
  BatchCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word.starts_with("--")) {
      readOption(words, word, call);
    } else {
      call.operands.push_back(word);
    }
  }
  if (call.operands.size() != 3) words.fail("batch: FUNCTION, IN and OUT are wanted");
  if (words.failed()) return call;
  const auto function = batchFunctionIn(call.operands[0]);
  if (!function) words.fail("batch: there is no function '" + call.operands[0] + "'; --list shows them");
  call.settings.function = function.value_or(0);
  call.settings.input = folderOperand(call.operands[1]);
  call.settings.output = folderOperand(call.operands[2]);
  return call;
}

// Brings the chain of the call into the rack. False, after a message, when it has no active plug-in.
bool loadChain(const BatchCall& call, Application& app) {
  if (!call.chain.empty() && !loadChainFile(app, call.chain, UnknownLibraries::tell)) return false;
  if (app.rack().hasActivePlugin()) return true;
  app.prompter().message(kNoActivePlugin);
  return false;
}

// Whether the folders may be used like this; a message or question has told why not.
bool acceptFolders(BatchSettings& settings, Prompter& prompter) {
  if (!outputLiesInInput(settings)) return true;
  const bool same = realPath(settings.input) == realPath(settings.output);
  if (same && settings.shards > 1) {
    prompter.message(
        "The parts of a split batch can't write into the input folder: each would find the "
        "others' files");
    return false;
  }
  settings.mayChangeInput = prompter.question(overwriteQuestion(settings));
  if (!settings.mayChangeInput) prompter.message("Nothing was done");
  return settings.mayChangeInput;
}

// Runs the batch on a thread of its own while this one watches for Ctrl-C: once stops after the files in
// work, twice gives them up, a third time ends the process.
class WatchedRun {
 public:
  WatchedRun(BatchRun& run, TerminalPrompter& prompter)
      : run_(run), prompter_(prompter), thread_([this] { work(); }) {}
  ~WatchedRun() { thread_.join(); }

  void watch() {
    // The log itself shows how far it is where a person reads it.
    const bool barWanted = !isTerminal(StandardStream::output);
    const ProgressScope scope(prompter_, "Batch");
    std::unique_lock lock(mutex_);
    for (int requests = 0; !changed_.wait_for(lock, kWatchInterval, [this] { return finished_; });) {
      if (interrupt_.interrupted() && requests < 2) {
        run_.requestStop();
        if (++requests < 2) interrupt_.watchAgain();
      }
      const BatchProgress progress = run_.progress();
      if (barWanted && progress.total > 0) {
        scope.progress().report(static_cast<float>(progress.done) / static_cast<float>(progress.total));
      }
    }
  }

 private:
  void work() {
    run_.run();
    const std::lock_guard lock(mutex_);
    finished_ = true;
    changed_.notify_one();
  }

  BatchRun& run_;
  TerminalPrompter& prompter_;
  InterruptWatch interrupt_;  // before the first file
  std::mutex mutex_;
  std::condition_variable changed_;
  bool finished_ = false;
  std::thread thread_;
};

int runCall(BatchCall call, TerminalPrompter& prompter, const std::string& home) {
  FileSystem& files = nativeFileSystem();
  BatchSettings& settings = call.settings;
  std::optional<Application> app;  // for its rack
  if (batchFunctions()[static_cast<size_t>(settings.function)].usesChain) {
    app.emplace(prompter, files, home);
    if (!loadChain(call, *app)) return kRefused;
  }
  if (settings.input.empty() || settings.output.empty()) {
    prompter.message(kSelectDirectories);
    return kRefused;
  }
  if (files.kind(settings.input) != FileKind::folder) {
    prompter.message("Unable to open " + settings.input + "\nThere is no such folder.");
    return kFileError;
  }
  if (!acceptFolders(settings, prompter)) return kRefused;
  BatchLogFile logFile;
  if (!call.log.empty() && !logFile.open(files, call.log)) {
    prompter.message("Unable to save " + call.log + "\n" + logFile.reason());
    return kFileError;
  }
  bool printed = true;
  BatchRun run(
      files, settings,
      [&](std::string_view text) {
        printed = printed && print(std::string(text));
        logFile.write(text);
      },
      app ? &app->rack() : nullptr);
  { WatchedRun(run, prompter).watch(); }
  if (app) {
    for (const std::string& fault : app->rack().takeFaultTexts()) prompter.message(fault);
  }
  if (const auto [done, total, last] = run.progress(); done < total) {
    prompter.message("Stopped after " + std::to_string(done) + " of " + std::to_string(total) + " files");
  }
  if (!logFile.close()) prompter.message("Unable to save " + call.log + "\n" + logFile.reason());
  return printed && logFile.reason().empty() ? kAllDone : kFileError;
}

std::string functionList() {
  std::string text;
  for (size_t i = 0; i < batchFunctions().size(); ++i) {
    text += std::to_string(i) + "\t" + batchFunctions()[i].text + "\n";
  }
  return text;
}

}  // namespace

int runBatch(const CallOptions& options, WordReader words) {
  if (!words.atEnd() && words.peek() == "--list") {
    words.take();
    if (!words.atEnd()) return wrongCall("batch --list: what is '" + words.take() + "'?");
    return print(functionList()) ? kAllDone : kFileError;
  }
  TerminalPrompter prompter(options.answer, options.quiet);
  if (!words.atEnd() && words.peek() == "--merge-logs") {
    words.take();
    return mergeLogs(words, prompter);
  }
  BatchCall call = readCall(words);
  if (words.failed()) return wrongCall(words.error());
  return runCall(std::move(call), prompter, options.home);
}

}  // namespace plumetta
