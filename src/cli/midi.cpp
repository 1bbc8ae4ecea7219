// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli midi listen`: prints the remote commands of MIDI devices as they arrive.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

#include "app/application.h"
#include "app/midi_setup.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"

namespace plumetta {
namespace {

using Clock = std::chrono::steady_clock;
constexpr double kLongestWait = 1e6;  // seconds; longer is without an end, which is the absence of the option

// Commands on their way from the devices' threads to the one that prints.
class Arrivals {
 public:
  void add(RemoteCommand command, int value) {
    const std::lock_guard guard(mutex_);
    lines_.push_back(std::string(kRemoteCommands[static_cast<size_t>(command)].name) + " " +
                     std::to_string(value) + "\n");
    arrived_.notify_one();
  }
  // Waits for the next one; nothing once the time is over.
  std::optional<std::string> next(std::optional<Clock::time_point> end) {
    std::unique_lock guard(mutex_);
    const auto some = [this] { return !lines_.empty(); };
    if (!end) {
      arrived_.wait(guard, some);
    } else if (!arrived_.wait_until(guard, *end, some)) {
      return std::nullopt;
    }
    std::string line = std::move(lines_.front());
    lines_.pop_front();
    return line;
  }

 private:
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::string> lines_;
};

struct ListenOptions {
  std::optional<int> device;
  std::optional<double> seconds;
};

std::optional<ListenOptions> readListenOptions(WordReader& words) {
  ListenOptions options;
  while (!words.atEnd()) {
    const std::string name = words.take();
    if (words.atEnd()) return std::nullopt;
    const std::string value = words.take();
    if (name == "--device") {
      options.device = numberIn<int>(value);
      if (!options.device || *options.device < 0) return std::nullopt;
    } else if (name == "--seconds") {
      options.seconds = numberIn<double>(value);
      if (!options.seconds || !(*options.seconds >= 0 && *options.seconds <= kLongestWait))
        return std::nullopt;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

// The device that was named, else those of the settings, else every one there is.
void openDevices(MidiRemote& remote, const ListenOptions& options, Application& app) {
  MidiSettings settings = app.settings().midi;
  if (options.device) {
    settings.devices.fill(-1);
    settings.devices[0] = *options.device;
  } else if (settings.devices == MidiSettings{}.devices) {
    const size_t count = std::min(remote.deviceNames().size(), kMidiSlots);
    for (size_t i = 0; i < count; ++i) settings.devices[i] = static_cast<int>(i);
  }
  startMidi(remote, settings, app.prompter());
}

int listen(const CallOptions& callOptions, const ListenOptions& options) {
  TerminalPrompter prompter(callOptions.answer, callOptions.quiet);
  Application app(prompter, nativeFileSystem(), callOptions.home);
  Arrivals arrivals;  // outlives the devices that fill it
  std::atomic<float> volume{1.0f};
  MidiRemote remote(nativeMidiInSystem(), volume);
  remote.setPoster([&](RemoteCommand command, int value) { arrivals.add(command, value); });
  openDevices(remote, options, app);
  if (!remote.anyOpen()) {
    if (!options.device) prompter.message("There is no MIDI input device.");
    return kRefused;
  }
  std::optional<Clock::time_point> end;
  if (options.seconds) {
    end = Clock::now() +
          std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(*options.seconds));
  }
  while (const auto line = arrivals.next(end)) {
    if (!print(*line)) return kFileError;
  }
  return kAllDone;
}

}  // namespace

int runMidi(const CallOptions& options, WordReader words) {
  if (words.atEnd() || words.take() != "listen") return wrongCall("midi: only 'listen' can follow");
  const auto listenOptions = readListenOptions(words);
  if (!listenOptions) return wrongCall("midi listen: [--device N] [--seconds S] are wanted");
  return listen(options, *listenOptions);
}

}  // namespace plumetta
