// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sonogram_dialog.h"

#include <wx/wrapsizer.h>

#include <algorithm>
#include <cmath>

#include "doc/sonogram_file.h"
#include "dsp/spectrum.h"
#include "ui/spectrum_words.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kSmallestSize = 256;
constexpr int kLargestSize = 16384;
constexpr SpectrumSettings kUsual{2048};
constexpr int kUsualDepthDb = 90;
// Levels that may stand in memory, of all columns, lines and planes.
constexpr int64_t kMostLevels = int64_t{1} << 25;
// Of a column that is longer: enough for an even picture, and soon computed.
constexpr int kMostBlocksPerColumn = 8;
// How often a sonogram is shown before all of it is there.
constexpr auto kShowInterval = std::chrono::milliseconds(100);

}  // namespace

CSonogramDlg::CSonogramDlg(wxWindow* parent, DocumentTabs& tabs, WindowProfile& profile)
    : AnalysisDlg(parent, "Sonogram", "Sonogram", profile), tabs_(tabs), view_(new SonogramView(this)) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  auto* top = new wxWrapSizer(wxHORIZONTAL, 0);
  top->Add(makeSpectrumControls(kSmallestSize, kLargestSize, kUsual, kUsualDepthDb), 0,
           wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(2 * kGap));
  wxArrayString planes;
  planes.Add("One by one");
  planes.Add("Together");
  auto* channels = new wxBoxSizer(wxHORIZONTAL);
  planes_ = addChoice(*channels, "&Channels:", planes, "Channels", 0, settingsChosen);
  top->Add(channels, 0, wxALIGN_CENTRE_VERTICAL);
  all->Add(top, 0, wxEXPAND | wxALL, FromDIP(kMargin));
  all->Add(view_, 1, wxEXPAND | wxLEFT, FromDIP(kMargin));
  takeLayout(*all, *view_, {860, 420}, {320, 160});
  bindView();
  showDecibels();
  showReadout();
}

void CSonogramDlg::bindView() {
  view_->onPointer = [this](std::optional<SonogramView::Place> place) {
    pointer_ = place;
    showReadout();
  };
  view_->onClick = [this](int32_t frame) {
    CPlumettaDoc* doc = tabs_.active();
    if (doc == nullptr) return;
    doc->selectNone();
    doc->setCursor(frame);
  };
  view_->onSelect = [this](int32_t from, int32_t to) {
    CPlumettaDoc* doc = tabs_.active();
    if (doc == nullptr) return;
    doc->select(from, to);
    doc->setCursor(to);
  };
  view_->onStretch = [this](double first, double length) {
    if (DocumentPanel* panel = tabs_.activePanel()) panel->showFrames({first, length});
  };
}

bool CSonogramDlg::Show(bool show) {
  if (!show) {
    view_->setSonogram(nullptr);
    shown_.reset();
    coming_.reset();
    computing_ = false;
    subject_ = {};
  }
  return AnalysisDlg::Show(show);
}

// ---- Computing ------------------------------------------------------------------------------------------

CSonogramDlg::Subject CSonogramDlg::subjectOf(const CPlumettaDoc& doc,
                                              const DocumentPanel::Stretch& seen) const {
  const SpectrumSettings settings = spectrumSettings();
  return {SampleState::of(doc),
          activeChannels(doc.wave()),
          seen.first,
          seen.length,
          view_->columns(),
          settings.size,
          static_cast<int>(settings.window),
          planes_->GetSelection() == 1};
}

// Columns stand at whole multiples of their length, so that a picture that is scrolled doesn't flicker.
SonogramPlan CSonogramDlg::planOf(const Subject& subject) const {
  SonogramPlan plan;
  plan.spectrum = spectrumSettings();
  plan.channels = subject.channels;
  plan.together = subject.together;
  const int64_t levelsPerColumn = int64_t{plan.spectrum.size / 2 + 1} * plan.planes();
  const auto columns = std::min<int64_t>(subject.columns, kMostLevels / levelsPerColumn);
  plan.framesPerColumn = subject.length / static_cast<double>(columns);
  const double firstColumn = std::floor(subject.first / plan.framesPerColumn);
  plan.firstFrame = firstColumn * plan.framesPerColumn;
  plan.columns = static_cast<int>(columns) + 1;
  const double blocks = std::ceil(plan.framesPerColumn / plan.spectrum.size);
  plan.blocksPerColumn = static_cast<int>(std::clamp<double>(blocks, 1, kMostBlocksPerColumn));
  return plan;
}

bool CSonogramDlg::follow(DocumentPanel* front) {
  Subject subject;
  if (front != nullptr) subject = subjectOf(front->document(), front->visibleFrames());
  if (subject != subject_) {
    subject_ = subject;
    coming_.reset();
    computing_ = front != nullptr && subject.length > 0 && !subject.channels.empty();
    if (computing_) {
      coming_ = std::make_unique<Sonogram>(front->document().wave(), planOf(subject));
    } else {
      view_->setSonogram(nullptr);
      shown_.reset();
    }
    SetTitle(front != nullptr ? toWx("Sonogram – " + front->document().title()) : wxString("Sonogram"));
    showFrequencies();
    showState();
  }
  showScene(front);
  return computing_ && compute(front->document().wave());
}

bool CSonogramDlg::compute(const CWave& wave) {
  Sonogram& newest = coming_ ? *coming_ : *shown_;
  computing_ = newest.advance(wave);
  const auto now = std::chrono::steady_clock::now();
  const bool first = coming_ && coming_->overviewDone();
  if (first) shown_ = std::exchange(coming_, nullptr);
  if (first || (!coming_ && (!computing_ || now - lastShown_ >= kShowInterval))) {
    lastShown_ = now;
    view_->setSonogram(shown_.get());
  }
  if (!computing_ || coming_) showState();
  return computing_;
}

// ---- Showing --------------------------------------------------------------------------------------------

void CSonogramDlg::showScene(DocumentPanel* front) {
  SonogramView::Scene scene;
  channels_ = 0;
  if (front != nullptr) {
    const CPlumettaDoc& doc = front->document();
    const ViewState& view = doc.view();
    scene = {subject_.first,      subject_.length,
             doc.wave().frames(), std::max(doc.wave().sampleRate(), 1u),
             front->timeFormat(), view.cursor,
             view.lowerBound(),   view.upperBound(),
             front->playFrame(),  {}};
    channels_ = doc.wave().channels();
  }
  if (shown_ && channels_ > 1 && !shown_->plan().together) {
    for (const int channel : shown_->plan().channels) scene.names.push_back(channelLabel(channel, channels_));
  }
  view_->setScene(scene);
}

void CSonogramDlg::showDecibels() { view_->setDepth(depthDb()); }

void CSonogramDlg::showFrequencies() {
  const double highest = std::max(subject_.samples.sampleRate / 2.0, 2 * kLowestHz);
  view_->setFrequencies({logarithmic() ? kLowestHz : 0.0, highest, logarithmic()});
}

void CSonogramDlg::showReadout() {
  const DocumentPanel* panel = tabs_.activePanel();
  if (!pointer_ || panel == nullptr || !shown_) {
    readout_->SetLabel("Click for the cursor, drag to select; the wheel zooms, with Ctrl along frequency.");
    return;
  }
  const SonogramPlan& plan = shown_->plan();
  const double frame = std::clamp(pointer_->frame, 0.0, std::max(subject_.samples.frames - 1.0, 0.0));
  wxString text = toWx(panel->positionText(std::llround(frame))) + "    " + hzText(pointer_->hz);
  if (const wxString note = noteText(pointer_->hz); !note.empty()) text += "    " + note;
  const double column = std::floor((pointer_->frame - plan.firstFrame) / plan.framesPerColumn);
  const double line = std::round(pointer_->hz / shown_->hzPerLine());
  const auto nearest = static_cast<size_t>(std::clamp<double>(line, 0, double(shown_->lines() - 1)));
  for (int plane = 0; plane < plan.planes() && column >= 0 && column < plan.columns; ++plane) {
    const int channel = plan.channels[static_cast<size_t>(plane)];
    const wxString name = plan.together ? wxString("Level") : channelLabel(channel, channels_);
    text +=
        "    " + name + " " + dbText(spectrumDb(shown_->amplitude(plane, static_cast<int>(column), nearest)));
  }
  readout_->SetLabel(text);
}

void CSonogramDlg::showState() {
  wxString text = " ";
  if (computing_) {
    text = wxString::Format("%.0f %%", 100 * (coming_ ? *coming_ : *shown_).fractionDone());
  } else if (shown_) {
    text = wxString::Format("Resolution %.1f Hz, %.1f ms", shown_->hzPerLine(), 1000.0 / shown_->hzPerLine());
  }
  if (state_->GetLabel() == text) return;
  state_->SetLabel(text);
  Layout();
}

}  // namespace plumetta
