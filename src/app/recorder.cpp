// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/recorder.h"

#include <cstdio>

#include "app/with_reason.h"
#include "doc/take_import.h"
#include "platform/private_profile.h"

namespace plumetta {
namespace {

constexpr const char* kTitle = "record.wav";
constexpr const char* kSection = "Record";
constexpr const char* kDurationKey = "Duration";
constexpr int kDefaultDuration = 60;
constexpr int kSafeRate = 44100;
constexpr const char* kRecordingStopped = "The recording has stopped.\n";

template <class... Values>
std::string formatted(const char* format, Values... values) {
  char text[2048];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

}  // namespace

Recorder::Recorder(Application& app, RecorderHost& host, WaveInSystem& system, PollTimer& timer)
    : app_(app), host_(host), folder_(app.files(), app.homeFolder()), capture_(system, timer) {}

Recorder::~Recorder() { endTake(); }

// ---- Input ----------------------------------------------------------------------------------------------

bool Recorder::startInput() {
  const RecordingSettings& settings = app_.settings().recording;
  if (capture_.start({settings.deviceId, settings.sampleRate, settings.bitDepth, settings.bufferFrames})) {
    return true;
  }
  app_.prompter().message(withReason("Unable to start audio driver in", capture_.errorText()));
  return false;
}

void Recorder::stopInput() {
  capture_.stop();
  monitoring_ = false;
}

bool Recorder::toggleMonitor() {
  if (monitoring_) {
    monitoring_ = false;
    if (!recording_) capture_.stop();
    return true;
  }
  if (!recording_ && !startInput()) return false;
  monitoring_ = true;
  return true;
}

// ---- Recording ------------------------------------------------------------------------------------------

bool Recorder::toggleRecord() {
  if (!recording_) return startRecording();
  stopRecording();
  return true;
}

bool Recorder::startRecording() {
  // A monitored input that has been lost in this moment can't be recorded from.
  if (monitoring_ && capture_.lost()) stopInput();
  if (!monitoring_ && !startInput()) return false;
  if (!beginTake()) {
    app_.prompter().message("Unable to create recording file");
    stopInput();
    return false;
  }
  recording_ = true;
  blinkOn_ = false;
  duration_.reset();
  return true;
}

bool Recorder::beginTake() {
  keptFile_.clear();
  const InputParameters& input = capture_.parameters();
  HeldTake take;
  auto file = folder_.create({input.sampleRate, kInputChannels, input.bitDepth, false}, take);
  if (file == nullptr) return false;
  if (!capture_.beginTake(std::move(file))) {
    folder_.remove(take);
    return false;
  }
  take_.emplace(std::move(take));
  return true;
}

// The take's file gets what is still on its way, and the input goes on only for the meters.
void Recorder::endTake() {
  recording_ = false;
  duration_.reset();
  blinkOn_ = false;
  const bool tooSlow = capture_.takeFailed();
  if (!monitoring_ || capture_.lost()) stopInput();
  const std::error_code error = capture_.endTake();
  if (!error && !tooSlow) return;
  std::string reason = error ? error.message() : "The disk is too slow.";
  if (take_ && error == std::errc::timed_out) {
    take_->unwritten = true;
    reason = "The disk does not answer. What it has not taken yet will be in\n" + take_->path;
  }
  app_.prompter().message(kRecordingStopped + reason);
}

void Recorder::stopRecording() {
  endTake();
  HeldTake take = std::move(*take_);
  take_.reset();
  import(take, true);
}

void Recorder::watch() {
  const bool full = recording_ && framesRecorded() > kMaxFrames - capture_.parameters().bufferFrames;
  if (!capture_.lost() && !full && !(recording_ && capture_.takeFailed())) return;
  if (capture_.lost() || full) {
    const std::string what = recording_ ? kRecordingStopped : "The input has stopped.\n";
    app_.prompter().message(what + (full ? "No document holds more." : capture_.errorText()));
  }
  if (recording_) {
    stopRecording();
  } else {
    stopInput();
  }
}

// ---- Into a document ------------------------------------------------------------------------------------

bool Recorder::import(HeldTake& take, bool mayUseActive) {
  CPlumettaDoc* active = mayUseActive ? host_.activeDocument() : nullptr;
  const bool fresh = active == nullptr || app_.settings().recording.alwaysNewDocument;
  CPlumettaDoc* document = fresh ? importAsNew(take) : importIntoActive(take, *active);
  if (document == nullptr) {
    keptFile_ = take.path;
    app_.prompter().message("Error importing recorded file:\r\n" + take.path +
                            "\r\nThe file has been saved and kept\n");
    return false;
  }
  settle(take);
  host_.recorded(*document);
  return true;
}

CPlumettaDoc* Recorder::importAsNew(const HeldTake& take) {
  const TakeInfo& info = take.info;
  CPlumettaDoc* document =
      app_.newDocument(static_cast<uint32_t>(info.sampleRate), info.channels, info.bitDepth, 0, kFormatPcm);
  if (document == nullptr) return nullptr;
  document->wave().setFileName(kTitle);
  document->setTitle(kTitle);
  TakeImport import{take.path, info.channels};
  import.undoable = false;  // there is nothing to go back to
  if (importTake(*document, import) == CommandOutcome::done) return document;
  app_.closeDocument(*document);
  return nullptr;
}

// Before the last frame, not behind it.
CPlumettaDoc* Recorder::importIntoActive(const HeldTake& take, CPlumettaDoc& document) {
  host_.stopPlayer();
  TakeImport import{take.path, take.info.channels};
  import.at.value = document.lastFrame();
  import.sampleRate = take.info.sampleRate;
  import.bitsPerSample = take.info.bitDepth;
  return importTake(document, import) == CommandOutcome::done ? &document : nullptr;
}

// A take that is in a document now: its file goes, or stays on purpose, or because the end of it still comes.
void Recorder::settle(HeldTake& take) {
  if (!app_.settings().recording.keepFiles && !take.unwritten) {
    folder_.remove(take);
    return;
  }
  folder_.keep(take);
  keptFile_ = take.path;
}

void Recorder::removeKeptFile() {
  folder_.remove({keptFile_, {}, {}});
  keptFile_.clear();
}

int Recorder::offerRecovery() {
  const RecordingSettings& settings = app_.settings().recording;
  int recovered = 0;
  for (HeldTake& take : folder_.unfinished({settings.sampleRate, kInputChannels, settings.bitDepth, false})) {
    std::string reason;
    const int64_t frames = framesOfTake(app_.files(), take.path, take.info.channels, reason);
    if (frames <= 0) continue;  // it ended before the first sound
    const double seconds = static_cast<double>(frames) / take.info.sampleRate;
    if (!app_.prompter().question("A recording was not finished:\n" + take.path +
                                  formatted("\n%2.1f seconds\nDo you want to recover it?", seconds))) {
      folder_.keep(take);
    } else if (import(take, false)) {
      ++recovered;
    }
  }
  return recovered;
}

// ---- Timers ---------------------------------------------------------------------------------------------

bool Recorder::mayRecordWithDuration() {
  if (!recording_) return true;
  app_.prompter().message("Still recording, stop the current capture first...");
  return false;
}

int Recorder::storedDuration() const {
  return readProfileInt(app_.profilePath(), kSection, kDurationKey, kDefaultDuration);
}

bool Recorder::recordWithDuration(int seconds) {
  if (!mayRecordWithDuration()) return false;
  // A folder that can't be written to shows when the recording's own file is made.
  writeProfileString(app_.profilePath(), kSection, kDurationKey, std::to_string(seconds));
  if (!startRecording()) return false;
  app_.prompter().status(formatted("Recording during : %d seconds", seconds));
  duration_ = seconds;
  secondsElapsed_ = 0;
  return true;
}

void Recorder::everySecond() {
  if (!recording_) return;
  blinkOn_ = !blinkOn_;
  if (duration_ && ++secondsElapsed_ > *duration_) toggleRecord();
}

std::string Recorder::blinkTitle() const {
  if (!blinkOn_) return {};
  return formatted("Recording : %d seconds", static_cast<int>(framesRecorded() / inputRate()));
}

// ---- Questions ------------------------------------------------------------------------------------------

bool Recorder::confirmConfiguration() {
  if (recording_ && !app_.prompter().question("Recording: do you want to stop?")) return false;
  if (recording_) stopRecording();
  stopInput();
  return true;
}

void Recorder::checkInputRate() {
  RecordingSettings& settings = app_.settings().recording;
  if (!capture_.device().IsRateSupported(settings.deviceId, settings.sampleRate)) {
    app_.prompter().message("Warning frequency for input seems not supported, reset to 44100Hz");
    settings.sampleRate = kSafeRate;
  }
  app_.saveSettings();
}

bool Recorder::confirmClose() {
  if (recording_ && !app_.prompter().question("Recording: do you want to quit?")) return false;
  if (recording_) endTake();
  stopInput();
  take_.reset();
  return true;
}

}  // namespace plumetta
