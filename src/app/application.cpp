// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/application.h"

#include <utility>

#include "app/updates.h"
#include "app/with_reason.h"
#include "core/keep_for_good.h"
#include "formats/clipboard_image.h"
#include "platform/crash_note.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

constexpr const char* kPastedName = "paste.wav";

}  // namespace

Application::Application(Prompter& prompter, FileSystem& files, const std::string& home,
                         WaveOutSystem& waveOut, AsioSystem& asio)
    : home_(programFolder(home)),
      settingsFile_(joinPath(home_, "plumetta.cfg")),
      undoFolder_(files, home_),
      services_{files,          undoFolder_, *audioLock_, prompter, history_,
                settings_.edit, clipboard_,  nullptr,     nullptr},
      urlReader_(files, undoFolder_, prompter, programAgent()),
      recoveryFiles_(std::make_unique<RecoveryFiles>(files, home_)),
      vstHost_(std::make_unique<VstHost>()),
      rack_(std::make_unique<Rack>(*vstHost_)),
      chainCopy_(std::make_unique<ChainCopy>(files, home_, *rack_)),
      transport_(std::make_unique<Transport>(*audioLock_, [this] { return startOutput(); })),
      playbackEngine_(
          std::make_unique<PlaybackEngine>(*audioLock_, transport_->controls(), AudioPlayer::kBufferFrames)),
      output_(std::make_unique<OutputDevice>(prompter, *playbackEngine_, *transport_, waveOut, asio)),
      midi_(nativeMidiInSystem(), transport_->controls().generalVolume) {
  if (!home.empty()) {
    if (const auto error = files.makeFolders(home_)) {
      prompter.message("Unable to make the folder " + home_ + "\n" + error.message());
    }
  }
  startOutput = [this] { return output_->start(settings_.output); };
  settingsFile_.load(settings_);
  generalVolume() = static_cast<float>(settings_.playback.generalVolume);
  applyPlaybackSettings();
  setUpPlugins();
  undoFolder_.removeLeftovers();
}

Application::~Application() {
  if (!vstHost_->hasAbandoned()) return;
  output_->abandon();
  keepForGood(std::move(output_));
  keepForGood(std::move(playbackEngine_));
  keepForGood(std::move(transport_));
  keepForGood(std::move(rack_));
  keepForGood(std::move(vstHost_));
  keepForGood(std::move(audioLock_));
}

void Application::setUpPlugins() {
  keepCrashNotes(home_);
  vstHost_->setBlockSize(Rack::kBufferFrames);
  vstHost_->setHostStrings("Plumetta", "Plumetta Team");
  vstHost_->setTempo(static_cast<float>(settings_.plugins.tempo));
  rack_->setSampleRate(settings_.output.sampleRate);
  playbackEngine_->setRack(rack_.get());
  services_.chain = rack_.get();
}

void Application::watchSound() {
  output_->watch();
  const auto faults = vstHost_->takeFaults();
  // Told here, or by a command that has met it first.
  const int abandoned = vstHost_->abandonedPlugins();
  if (std::exchange(abandonedPlugins_, abandoned) != abandoned) output_->abandon();
  if (faults.empty()) return;
  std::string text;
  for (const PluginFault& fault : faults) text += (text.empty() ? "" : "\n") + fault.text();
  prompter().status(faults.back().text());
  prompter().message(text);
}

// ---- Copies for the case of a crash ---------------------------------------------------------------------

void Application::keepCopies() {
  const bool atRisk = rackOn() && rack_->hasActivePlugin();
  atRisk ? recoveryFiles_->follow(documents_) : recoveryFiles_->dropSaved(documents_);
  chainCopy_->follow();
  tellCopyFailure();
}

void Application::secureDocuments() {
  const BusyScope busy(prompter());
  recoveryFiles_->bringUpToDate(documents_);
  chainCopy_->bringUpToDate();
  tellCopyFailure();
}

void Application::tellCopyFailure() {
  std::string title = recoveryFiles_->takeFailure();
  if (chainCopy_->takeFailure()) title = "the VST rack";
  if (!title.empty()) prompter().status("There is no room for a copy of " + title + " in " + home_);
}

CPlumettaDoc* Application::openLeftCopy(LeftCopy copy) {
  FileOutcome outcome{};
  OpenOptions options;
  options.keepForeignChunks = true;
  CPlumettaDoc* document = openDocument(copy.path, outcome, options);
  if (document == nullptr) return nullptr;
  CWave& wave = document->wave();
  wave.setFileName(copy.info.fileName);
  wave.setBitsPerSample(copy.info.bits);
  wave.setFormatTag(static_cast<uint16_t>(copy.info.formatTag));
  document->setTitle(copy.info.title);
  document->setModified(true);
  recoveryFiles_->adopt(std::move(copy), *document);
  return document;
}

std::string Application::profilePath() const { return joinPath(home_, "plumetta.ini"); }

void Application::applyPlaybackSettings() {
  PlaybackControls& controls = transport_->controls();
  const PlaybackSettings& playback = settings_.playback;
  controls.loop = playback.loop;
  controls.windSpeed = playback.windSpeed;
  controls.resampling = playback.realTimeResampling;
  controls.automation = playback.playEnvelope;
  for (size_t k = 0; k < controls.routing.size(); ++k) controls.routing[k] = playback.routing[k];
}

bool Application::rememberVolume() {
  double& stored = settings_.playback.generalVolume;
  const float heard = generalVolume();
  if (static_cast<float>(stored) == heard) return false;
  stored = heard;
  return true;
}

bool Application::saveSettings() {
  if (!services_.files.makeFolders(home_) && settingsFile_.save(settings_)) return true;
  if (!settingsFailureTold_) prompter().message("Unable to write the settings in " + home_);
  settingsFailureTold_ = true;
  return false;
}

CPlumettaDoc* Application::openDocument(const std::string& path, FileOutcome& outcome,
                                        const OpenOptions& options) {
  auto document = std::make_unique<CPlumettaDoc>(services_);
  outcome = document->load(path, options);
  if (outcome != FileOutcome::done) return nullptr;
  return documents_.emplace_back(std::move(document)).get();
}

CPlumettaDoc* Application::newDocument(uint32_t sampleRate, int channels, int bits, int64_t frames,
                                       uint16_t formatTag) {
  auto document = std::make_unique<CPlumettaDoc>(services_);
  if (!document->createNew(sampleRate, channels, bits, frames, formatTag)) return nullptr;
  return documents_.emplace_back(std::move(document)).get();
}

CPlumettaDoc* Application::pasteAsNewDocument() {
  if (clipboard_ == nullptr) return nullptr;
  auto document = std::make_unique<CPlumettaDoc>(services_);
  if (!document->wave().copyFrom(*clipboard_)) {
    prompter().message("There is not enough memory for this.");
    return nullptr;
  }
  return adoptUnsaved(std::move(document), kPastedName, kPastedName);
}

CPlumettaDoc* Application::pasteFromSystemClipboard() {
  SystemClipboard* clipboard = services_.systemClipboard;
  const auto image = clipboard != nullptr ? clipboard->waveImage() : std::nullopt;
  if (!image) {
    prompter().message("The system clipboard holds no audio.");
    return nullptr;
  }
  auto document = std::make_unique<CPlumettaDoc>(services_);
  const LoadResult result = readClipboardImage(*image, document->wave());
  if (result.status != LoadStatus::loaded) {
    prompter().message(withReason("The audio on the system clipboard can't be read.", result.reason));
    return nullptr;
  }
  for (const std::string& warning : result.warnings) prompter().message(warning);
  return adoptUnsaved(std::move(document), kPastedName, "paste from clipboard.wav");
}

CPlumettaDoc* Application::openFetched(const FetchedFile& fetched, FileOutcome& outcome,
                                       const OpenOptions& options) {
  auto document = std::make_unique<CPlumettaDoc>(services_);
  outcome = document->load(fetched.file->path(), options, fetched.address);
  if (outcome != FileOutcome::done) return nullptr;
  return adoptUnsaved(std::move(document), fetched.name, fetched.name.empty() ? kUntitled : fetched.name);
}

CPlumettaDoc* Application::adoptUnsaved(std::unique_ptr<CPlumettaDoc> document, const std::string& fileName,
                                        const std::string& title) {
  document->wave().setFileName(fileName);
  document->setTitle(title);
  document->setModified(true);
  return documents_.emplace_back(std::move(document)).get();
}

void Application::closeDocument(CPlumettaDoc& document) {
  transport_->release(document);
  recoveryFiles_->forget(document);
  std::erase_if(documents_, [&](const auto& own) { return own.get() == &document; });
}

}  // namespace plumetta
