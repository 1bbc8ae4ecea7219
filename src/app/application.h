// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "app/chain_copy.h"
#include "app/output_device.h"
#include "app/recovery_files.h"
#include "app/settings.h"
#include "app/url_reader.h"
#include "audio/midi_remote.h"
#include "audio/playback_engine.h"
#include "audio/transport.h"
#include "core/audio_lock.h"
#include "core/prompter.h"
#include "core/undo_folder.h"
#include "doc/document.h"
#include "doc/document_services.h"
#include "platform/file_system.h"
#include "vst/rack.h"
#include "vst/vst_host.h"

namespace plumetta {

// Everything that is there once for all documents: settings, audio lock, clipboard, history, and the open
// documents themselves. No window anywhere in it. UI thread.
class Application {
 public:
  // `home` overrides the program's own folder; it is made when missing. Empty means the usual one.
  Application(Prompter& prompter, FileSystem& files, const std::string& home,
              WaveOutSystem& waveOut = nativeWaveOut(), AsioSystem& asio = nativeAsio());
  // Ends at once, and leaves behind what a plug-in that hangs may still reach.
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  const std::string& homeFolder() const { return home_; }
  // Where the window keeps its own state and each dialog its last values.
  std::string profilePath() const;

  Settings& settings() { return settings_; }
  // Writes the settings back; the first time in a run that this fails the person is told.
  bool saveSettings();

  // The factor that is heard now. MIDI writes it from threads of its own; `rememberVolume` takes it over into
  // the settings. True when that has changed them.
  std::atomic<float>& generalVolume() { return transport_->controls().generalVolume; }
  bool rememberVolume();
  MidiRemote& midi() { return midi_; }

  UrlReader& urlReader() { return urlReader_; }

  Prompter& prompter() { return services_.prompter; }
  FileSystem& files() { return services_.files; }
  HistoryList& history() { return history_; }
  // Must outlive the application or be taken away again.
  void setSystemClipboard(SystemClipboard* clipboard) { services_.systemClipboard = clipboard; }
  const CWave* clipboard() const { return clipboard_.get(); }

  Transport& transport() { return *transport_; }
  PlaybackEngine& playbackEngine() { return *playbackEngine_; }
  OutputDevice& output() { return *output_; }
  VstHost& vstHost() { return *vstHost_; }
  Rack& rack() { return *rack_; }
  // Whether playing goes through the rack; off at first.
  void setRackOn(bool on) { transport_->controls().rackEnabled = on; }
  bool rackOn() const { return transport_->controls().rackEnabled; }
  // What was changed has a copy on the disk while sound goes through the rack, and so has its chain; what was
  // saved has none. About once a second.
  void keepCopies();
  // The same at once, before a plug-in's code runs that has not run yet.
  void secureDocuments();
  RecoveryFiles& recoveryFiles() { return *recoveryFiles_; }
  ChainCopy& chainCopy() { return *chainCopy_; }
  // The document as it was, changed, under its old name; null when the copy can't be read (a message has said
  // so), which then stays.
  CPlumettaDoc* openLeftCopy(LeftCopy copy);
  // Looks after device and plug-ins: a message says what has failed, and playing stops when it can't go on.
  // Several times a second while there is sound.
  void watchSound();
  // Starts what pulls the engine's callback, where it isn't running yet: the output device, unless somebody
  // else pulls.
  std::function<bool()> startOutput;
  // Brings the settings of playback to where the audio thread obeys them; after each change of them.
  void applyPlaybackSettings();

  // Null when the file could not be opened (a message has said so) or the person cancelled.
  CPlumettaDoc* openDocument(const std::string& path, FileOutcome& outcome, const OpenOptions& options = {});
  // What was fetched from an address, as a document that was never saved; null as above.
  CPlumettaDoc* openFetched(const FetchedFile& fetched, FileOutcome& outcome,
                            const OpenOptions& options = {});
  // Null when no buffer can have these values.
  CPlumettaDoc* newDocument(uint32_t sampleRate, int channels, int bits, int64_t frames, uint16_t formatTag);
  // A copy of the clipboard buffer as a document of its own, "paste.wav"; null when there is nothing to
  // paste, or no memory (a message has said so).
  CPlumettaDoc* pasteAsNewDocument();
  // The audio that another program has put on the system clipboard; null when there is none or it can't be
  // read (a message has said so).
  CPlumettaDoc* pasteFromSystemClipboard();
  // Playing it stops first.
  void closeDocument(CPlumettaDoc& document);
  // In the order of opening.
  const std::vector<std::unique_ptr<CPlumettaDoc>>& documents() const { return documents_; }

 private:
  void setUpPlugins();
  void tellCopyFailure();
  CPlumettaDoc* adoptUnsaved(std::unique_ptr<CPlumettaDoc> document, const std::string& fileName,
                             const std::string& title);

  std::string home_;
  std::unique_ptr<AudioLock> audioLock_ = std::make_unique<AudioLock>();
  HistoryList history_;
  Settings settings_;
  SettingsFile settingsFile_;
  bool settingsFailureTold_ = false;
  std::shared_ptr<const CWave> clipboard_;
  UndoFolder undoFolder_;
  DocumentServices services_;
  UrlReader urlReader_;
  std::vector<std::unique_ptr<CPlumettaDoc>> documents_;
  std::unique_ptr<RecoveryFiles> recoveryFiles_;
  std::unique_ptr<VstHost> vstHost_;
  std::unique_ptr<Rack> rack_;
  std::unique_ptr<ChainCopy> chainCopy_;
  std::unique_ptr<Transport> transport_;
  std::unique_ptr<PlaybackEngine> playbackEngine_;
  std::unique_ptr<OutputDevice> output_;  // stops before the documents go
  int abandonedPlugins_ = 0;              // of which the output knows
  MidiRemote midi_;
};

}  // namespace plumetta
