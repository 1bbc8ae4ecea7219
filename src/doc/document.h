// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "core/display_state.h"
#include "core/playback_source.h"
#include "core/undo.h"
#include "core/wave.h"
#include "doc/document_services.h"
#include "doc/peak_pyramid.h"
#include "doc/version_chunk.h"
#include "dsp/spectrum.h"
#include "formats/format.h"

namespace plumetta {

inline constexpr const char* kUntitled = "Untitled";

struct SonogramFileSettings;

// Told what of a document has changed, so that views can follow. UI thread.
class DocumentListener {
 public:
  virtual ~DocumentListener() = default;
  virtual void samplesChanged() = 0;      // samples, length, layout or format
  virtual void annotationsChanged() = 0;  // markers, loops, envelope, active channels
  virtual void viewChanged() = 0;         // selection, cursor, scroll position or zoom
  virtual void titleChanged() = 0;        // title or modified flag
  virtual void playbackStopped() = 0;     // by command: the cursor is to come into sight
};

enum class FileOutcome {
  done,
  refused,    // the document can't do this; a message has said why
  fileError,  // a file could not be read, decoded or written; a message has named it
  cancelled,
};

// One open audio file: its samples, its undo journal, what is selected and where it is looked at. Views read
// it and change it through commands alone (doc/command.h). UI thread.
class CPlumettaDoc : public DisplayState, public PlaybackSource {
 public:
  explicit CPlumettaDoc(DocumentServices& services);

  CWave& wave() { return wave_; }
  const CWave& wave() const noexcept override { return wave_; }
  CDoUndo& journal() { return journal_; }
  const CDoUndo& journal() const { return journal_; }
  DocumentServices& services() const { return services_; }
  Prompter& prompter() const { return services_.prompter; }

  const std::string& title() const { return title_; }
  void setTitle(std::string title);
  bool modified() const { return modified_; }
  void setModified(bool modified);
  void setListener(DocumentListener* listener) { listener_ = listener; }

  // Frame positions from outside are brought into the file.
  int32_t lastFrame() const { return wave_.frames() > 0 ? wave_.frames() - 1 : 0; }
  int32_t clampFrame(int64_t frame) const;
  void select(int64_t from, int64_t to);
  void selectNone() { select(0, 0); }
  // Ends exactly as given, for commands that state them.
  void setSelectionExactly(int32_t start, int32_t end);
  void setCursor(int64_t frame) override;
  void setScrollAndZoom(double firstVisibleFrame, double framesPerPixel);
  const ViewState& view() const { return view_; }

  // The selection, both ends included and inside the file, or the whole file when nothing is selected.
  struct Range {
    int32_t first, last;
  };
  Range selectionOrAll() const;
  // The selection, or the one frame at the selection point.
  Range selectionOrPoint() const;

  // Which channels editing acts on and playing lets through.
  void setActive(ActiveOperation operation, int channel);

  // Takes over what playing has moved or ended since the last look; asked on a timer while something plays.
  void followPlayback();
  void playbackStopped() override;

  // The marker that was clicked; the next delete takes it instead of audio.
  std::optional<int> selectedMarker;

  bool createNew(uint32_t sampleRate, int channels, int bits, int64_t frames, uint16_t formatTag);
  // `shownAs` is what messages call the file, where that isn't its path.
  FileOutcome load(const std::string& path, const OpenOptions& options = {}, const std::string& shownAs = {});
  // Saves by the name's extension; the document then carries that name.
  FileOutcome save(const std::string& path, const SaveOptions& options = {});
  FileOutcome saveRange(int32_t from, int32_t to, const std::string& path);
  FileOutcome split(const std::string& prefix);
  FileOutcome exportText(const std::string& path);
  FileOutcome dumpFloats(const std::string& path);

  // The statistics report of the selection, or of the whole file.
  std::string statistics(bool includeLevels) const;
  FileOutcome saveStatistics(const std::string& path, bool includeLevels);
  // The averaged spectrum of the selection, or of the whole file.
  FileOutcome saveSpectrum(const std::string& path, SpectrumSettings settings);
  // The spectra of its active channels along time, as comma-separated text.
  FileOutcome saveSonogram(const std::string& path, const SonogramFileSettings& settings);
  // What views draw the waveform from; made when it is first asked for after a change.
  const PeakPyramid& peaks();

  // The journal's view of the display.
  ViewState viewState() const override { return view_; }
  void setViewState(const ViewState& state) override;
  void samplesChanged() override;
  void annotationsChanged();

 private:
  bool takeWound();
  void tellPlayback();
  FileOutcome report(const SaveResult& result, const std::string& path);
  FileOutcome writeWithProgress(const std::string& path, const std::string& title,
                                const std::function<SaveResult()>& write);
  FileOutcome refuseUnknownContent(const std::string& path, const std::string& shownAs);
  bool confirmLosses(const Format& format, const std::string& path);

  DocumentServices& services_;
  CWave wave_;
  CDoUndo journal_;
  ViewState view_;
  PeakPyramid peaks_;
  bool peaksStale_ = true;
  std::string title_ = kUntitled;
  bool modified_ = false;
  std::vector<std::string> textKinds_;          // text information of the file that isn't kept
  std::vector<const Format*> formatsOfLosses_;  // the person has been told what these lose
  DocumentListener* listener_ = nullptr;
};

}  // namespace plumetta
