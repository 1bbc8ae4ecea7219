// SPDX-License-Identifier: GPL-3.0-or-later
// `bounce`: what playing would hand to a device, as a file.
#include <atomic>
#include <charconv>
#include <cmath>
#include <memory>

#include "audio/bounce.h"
#include "cli/edit_steps.h"
#include "formats/wav_writer.h"
#include "platform/paths.h"
#include "vst/offline_worker.h"

namespace plumetta {
namespace {

enum BounceArgument : size_t {
  kFile,
  kRate,
  kFrames,
  kBuffer,
  kChannels,
  kLoop,
  kWhole,
  kVolume,
  kRack,
  kAutomation,
  kResampling,
  kRoute
};

constexpr double kToTheEnd = -1;
constexpr int64_t kMostRate = 10'000'000;

using Routing = std::array<int, kMaxOutputChannels>;

// "0,1": the source channel of each output in turn; -1, nothing, or no item is silence.
std::optional<Routing> readRouting(std::string_view text) {
  Routing routing;
  routing.fill(-1);
  for (int& source : routing) {
    const size_t comma = text.find(',');
    const std::string_view item = text.substr(0, comma);
    const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), source);
    const bool whole = error == std::errc{} && end == item.data() + item.size();
    if (!item.empty() && (!whole || source < -1)) return std::nullopt;
    if (comma == std::string_view::npos) return routing;
    text.remove_prefix(comma + 1);
  }
  return std::nullopt;  // more items than outputs
}

bool flag(const StepArguments& arguments, size_t i) { return std::get<bool>(arguments[i]); }

std::string bounceFault(const StepArguments& arguments) {
  const auto integer = [&](size_t i) { return std::get<int64_t>(arguments[i]); };
  const double frames = std::get<FrameOrTime>(arguments[kFrames]).value;
  const auto within = [](int64_t value, int64_t most) { return value >= 1 && value <= most; };
  if (!within(integer(kRate), kMostRate)) return "rate is out of range";
  if (!within(integer(kBuffer), kMostBounceBuffer)) return "buffer is out of range";
  if (!within(integer(kChannels), kMaxOutputChannels)) return "channels is out of range";
  if (!(frames >= 0 || frames == kToTheEnd)) return "frames is out of range";
  if (!std::isfinite(std::get<double>(arguments[kVolume]))) return "volume is out of range";
  if (!readRouting(std::get<std::string>(arguments[kRoute]))) return "malformed route";
  const bool endless = flag(arguments, kLoop) && !flag(arguments, kWhole) && frames == kToTheEnd;
  return endless ? "loop=on needs frames=F or whole=on" : "";
}

BounceOptions optionsOf(const StepArguments& arguments) {
  const auto integer = [&](size_t i) { return static_cast<int>(std::get<int64_t>(arguments[i])); };
  BounceOptions options;
  options.outputRate = integer(kRate);
  options.bufferFrames = integer(kBuffer);
  options.channels = integer(kChannels);
  options.loop = flag(arguments, kLoop);
  options.wholeFile = flag(arguments, kWhole);
  options.generalVolume = static_cast<float>(std::get<double>(arguments[kVolume]));
  options.automation = flag(arguments, kAutomation);
  options.resampling = flag(arguments, kResampling);
  options.routing = *readRouting(std::get<std::string>(arguments[kRoute]));
  return options;
}

StepOutcome tell(EditSession& session, const SaveResult& result, const std::string& path) {
  if (result.saved) return StepOutcome::done;
  if (result.cancelled) return StepOutcome::refused;
  session.app.prompter().message("Unable to save " + path + "\n" + result.reason);
  return StepOutcome::fileError;
}

// What a bounce may still need when a plug-in never comes back.
struct BounceWork {
  PlaybackSource& source;
  BounceOptions options;
  CWave sound;
  WaveProgress progress;
  std::atomic<bool> leftBehind{false};

  BounceWork(PlaybackSource& played, const BounceOptions& how, WaveProgress told)
      : source(played), options(how), progress(told) {}
  BounceResult run() { return bounce(source, options, sound, {&BounceWork::report, this}); }

 private:
  static bool report(float fractionDone, void* self) {
    auto& work = *static_cast<BounceWork*>(self);
    return !work.leftBehind && work.progress.report(fractionDone);
  }
};

// Through the rack on a thread that can be left behind; plug-ins hear of the output's rate meanwhile.
BounceResult bounceThroughRack(Application& app, const std::shared_ptr<BounceWork>& work) {
  VstHost& host = app.vstHost();
  const auto rateBefore = static_cast<int>(host.sampleRate());
  const bool abandonedBefore = host.hasAbandoned();
  work->options.rack = &app.rack();
  const auto patient = [&] {
    host.watchForHangs();
    return abandonedBefore || !host.hasAbandoned();
  };
  OfflineWorker worker;
  auto result = std::make_shared<BounceResult>(BounceResult::cancelled);
  const auto play = [work, result] {
    *result = work->run();
    return true;
  };
  const bool ended = worker.run(play, patient);
  if (!ended) work->leftBehind = true;
  app.rack().setSampleRate(rateBefore);
  app.watchSound();
  return ended ? *result : BounceResult::cancelled;
}

StepOutcome runBounce(EditSession& session, const StepArguments& arguments) {
  const std::string path = absolutePath(std::get<std::string>(arguments[kFile]));
  BounceOptions options = optionsOf(arguments);
  if (const FrameOrTime& length = std::get<FrameOrTime>(arguments[kFrames]); length.value != kToTheEnd) {
    const int64_t frames = length.frames(session.doc->wave().sampleRate());
    // Told now, not once the memory for all of it is full.
    if (frames > kMaxFrames || !fitsIntoWav(frames, options.channels, 32)) {
      return tell(session, SaveResult::failure(kTooLongForWav), path);
    }
    options.frames = static_cast<int32_t>(frames);
  }
  const ProgressScope progress(session.app.prompter(), "Writing " + fileNameOf(path));
  const auto work = std::make_shared<BounceWork>(*session.doc, options, progress.progress());
  switch (flag(arguments, kRack) ? bounceThroughRack(session.app, work) : work->run()) {
    case BounceResult::cancelled:
      return StepOutcome::refused;
    case BounceResult::tooLong:
      return tell(session, SaveResult::failure("There is not enough memory for this."), path);
    case BounceResult::done:
      break;
  }
  return tell(session, saveWav(session.app.files(), path, work->sound, SyncToDisk::yes), path);
}

Parameter option(const char* key, ParameterType type, ParameterValue fallback) {
  return {key, "", "", type, false, std::move(fallback), 0, 0, ""};
}

}  // namespace

EditStep bounceStep() {
  const auto integer = [](const char* key, int64_t fallback) {
    return option(key, ParameterType::integer, fallback);
  };
  const auto boolean = [](const char* key, bool fallback) {
    return option(key, ParameterType::boolean, fallback);
  };
  return {"bounce",
          {{"file", "", "", ParameterType::text, true, std::string{}, 0, 0, ""},
           integer("rate", 44100),
           option("frames", ParameterType::frame, FrameOrTime{kToTheEnd, false}),
           integer("buffer", 2048),
           integer("channels", 2),
           boolean("loop", false),
           boolean("whole", false),
           option("volume", ParameterType::real, 1.0),
           boolean("rack", false),
           boolean("automation", true),
           boolean("resampling", true),
           option("route", ParameterType::text, std::string("0,1"))},
          true,
          runBounce,
          nullptr,
          bounceFault};
}

}  // namespace plumetta
