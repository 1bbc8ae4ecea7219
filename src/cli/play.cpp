// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli play`: plays a file on a device.
#include <chrono>
#include <thread>

#include "app/plugin_library.h"
#include "cli/opened_file.h"
#include "platform/interrupt.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr auto kWatchInterval = std::chrono::milliseconds(20);

struct PlayCall {
  std::string file, chain;
  SelectionOption selection;
  bool loop = false;
  bool asio = false;
  std::optional<int> device, rate;
};

PlayCall readCall(WordReader& words) {
  PlayCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word == "--select") {
      call.selection.read(words, "play");
    } else if (word == "--loop") {
      call.loop = true;
    } else if (word == "--asio") {
      call.asio = true;
    } else if (word == "--device") {
      readNumber(words, "play", word, isDeviceIndex, call.device);
    } else if (word == "--rate") {
      readNumber(words, "play", word, isWaveOutRate, call.rate);
    } else if (word == "--chain" && !words.atEnd()) {
      call.chain = absolutePath(words.take());
    } else if (call.file.empty() && !word.starts_with("--")) {
      call.file = absolutePath(word);
    } else {
      words.fail("play: what is '" + word + "'?");
    }
  }
  if (call.file.empty()) words.fail("play: FILE is missing");
  return call;
}

void takeOverOptions(const PlayCall& call, Application& app) {
  OutputSettings& output = app.settings().output;
  output.asio = call.asio;
  output.deviceId = call.device.value_or(output.deviceId);
  output.sampleRate = call.rate.value_or(output.sampleRate);
  app.settings().playback.loop = call.loop;
  app.applyPlaybackSettings();
}

// Until the end, the loss of the device, or Ctrl-C. False when the device was lost.
bool playToTheEnd(Application& app, CPlumettaDoc& doc, TerminalPrompter& prompter) {
  const InterruptWatch interrupt;
  const std::atomic<bool>& playing = app.transport().controls().playing;
  const ProgressScope progress(prompter, "Playing");
  const double frames = std::max(doc.wave().frames(), 1);
  while (playing && !interrupt.interrupted()) {
    std::this_thread::sleep_for(kWatchInterval);
    app.watchSound();
    progress.progress().report(static_cast<float>(doc.playback().playCursor / frames));
  }
  if (!app.output().running()) return false;
  // What lies in the device's queue is still to be heard.
  if (!interrupt.interrupted())
    std::this_thread::sleep_for(std::chrono::duration<double>(app.output().latency()));
  return true;
}

}  // namespace

int runPlay(const CallOptions& options, WordReader words) {
  const PlayCall call = readCall(words);
  if (words.failed()) return wrongCall(words.error());
  OpenedFile opened(options, call.file, call.selection);
  if (opened.doc == nullptr) return kFileError;
  if (!call.chain.empty() && !loadChainFile(opened.app, call.chain, UnknownLibraries::tell)) return kRefused;
  opened.app.setRackOn(!call.chain.empty());
  takeOverOptions(call, opened.app);
  if (!opened.app.transport().play(opened.doc)) return kRefused;
  const bool whole = playToTheEnd(opened.app, *opened.doc, opened.prompter);
  opened.app.output().stop();
  return whole ? kAllDone : kRefused;
}

}  // namespace plumetta
