// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli record`: records from a device into a file.
#include <chrono>
#include <cmath>
#include <thread>

#include "app/recorder.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"
#include "formats/format.h"
#include "platform/interrupt.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr double kLongest = 1e6;  // seconds; more than any document holds
constexpr auto kWatchInterval = std::chrono::milliseconds(20);

struct RecordCall {
  std::string file;
  double seconds = 0;
  std::optional<int> device, rate, bits;
};

void readSeconds(WordReader& words, double& seconds) {
  const auto number = words.atEnd() ? std::nullopt : numberIn<double>(words.take());
  if (number && *number > 0 && *number <= kLongest) seconds = *number;
  if (seconds == 0) words.fail("record: --seconds wants a number above 0 and at most 1000000");
}

RecordCall readCall(WordReader& words) {
  RecordCall call;
  while (!words.atEnd() && !words.failed()) {
    const std::string word = words.take();
    if (word == "--seconds") {
      readSeconds(words, call.seconds);
    } else if (word == "--device") {
      readNumber(words, "record", word, isDeviceIndex, call.device);
    } else if (word == "--rate") {
      readNumber(words, "record", word, isWaveInRate, call.rate);
    } else if (word == "--bits") {
      readNumber(words, "record", word, isWaveInBitDepth, call.bits);
    } else if (call.file.empty() && !word.starts_with("--")) {
      call.file = absolutePath(word);
    } else {
      words.fail("record: what is '" + word + "'?");
    }
  }
  if (call.file.empty()) words.fail("record: FILE is missing");
  if (call.seconds == 0) words.fail("record: --seconds is missing");
  if (!words.failed() && writableFormatOfName(call.file) == nullptr) {
    words.fail("record: the extension of FILE names no format that can be written");
  }
  return call;
}

// There is no document before the recording, and nothing plays.
class NewDocument : public RecorderHost {
 public:
  CPlumettaDoc* activeDocument() override { return nullptr; }
  void stopPlayer() override {}
  void recorded(CPlumettaDoc& recording) override { document = &recording; }

  CPlumettaDoc* document = nullptr;
};

// Until there are enough frames, the device or disk fails, or somebody presses Ctrl-C. Whether all came.
bool recordFrames(Recorder& recorder, TerminalPrompter& prompter, const RecordCall& call, int64_t& wanted) {
  const InterruptWatch interrupt;
  if (!recorder.toggleRecord()) return false;
  wanted = std::llround(call.seconds * recorder.inputRate());
  {
    const ProgressScope progress(prompter, "Recording");
    while (recorder.recording() && recorder.framesRecorded() < wanted && !interrupt.interrupted()) {
      std::this_thread::sleep_for(kWatchInterval);
      recorder.watch();
      progress.progress().report(static_cast<float>(recorder.framesRecorded()) / static_cast<float>(wanted));
    }
  }
  if (recorder.recording()) recorder.toggleRecord();
  return interrupt.interrupted() || recorder.framesRecorded() >= wanted;
}

void cutTo(CPlumettaDoc& document, int64_t frames) {
  CWave& wave = document.wave();
  if (wave.frames() > frames) wave.deleteRange(static_cast<int32_t>(frames), wave.frames() - 1);
}

void takeOverOptions(const RecordCall& call, RecordingSettings& settings) {
  settings.deviceId = call.device.value_or(settings.deviceId);
  settings.sampleRate = call.rate.value_or(settings.sampleRate);
  settings.bitDepth = call.bits.value_or(settings.bitDepth);
  settings.keepFiles = true;  // until the audio is in its file
}

}  // namespace

int runRecord(const CallOptions& options, WordReader words) {
  const RecordCall call = readCall(words);
  if (words.failed()) return wrongCall(words.error());
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  const bool keepFiles = app.settings().recording.keepFiles;
  takeOverOptions(call, app.settings().recording);
  NewDocument host;
  Recorder recorder(app, host);
  int64_t wanted = 0;
  const bool whole = recordFrames(recorder, prompter, call, wanted);
  if (host.document == nullptr) return kRefused;
  cutTo(*host.document, wanted);
  if (host.document->save(call.file) != FileOutcome::done) {
    prompter.message("The recording is kept in\n" + recorder.keptFile());
    return kFileError;
  }
  if (!keepFiles) recorder.removeKeptFile();
  return whole ? kAllDone : kRefused;
}

}  // namespace plumetta
