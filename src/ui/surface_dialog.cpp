// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/surface_dialog.h"

#include <algorithm>
#include <cmath>

#include "doc/frequency_rows.h"
#include "doc/ruler_ticks.h"
#include "doc/sonogram_file.h"
#include "ui/spectrum_words.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "3D spectrum";
constexpr int kSmallestSize = 256;
constexpr int kLargestSize = 16384;
constexpr SpectrumSettings kUsual{4096};
constexpr int kUsualDepthDb = 90;
constexpr int kSpectra = 129;  // the last one of each fourth has a line
constexpr int kPlaces = 320;
constexpr int kMostBlocksPerSpectrum = 16;
constexpr double kLiveSeconds = 4.0;  // what is to be seen while it plays
constexpr int kTimeLabels = 6;        // at most
// How often spectra are shown before all of them are there.
constexpr auto kShowInterval = std::chrono::milliseconds(150);

}  // namespace

C3DSpectrumDlg::C3DSpectrumDlg(wxWindow* parent, WindowProfile& profile)
    : AnalysisDlg(parent, "3D spectrum", kSection, profile), view_(new SurfaceView(this)) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  auto* top = new wxBoxSizer(wxHORIZONTAL);
  top->Add(makeSpectrumControls(kSmallestSize, kLargestSize, kUsual, kUsualDepthDb), 0,
           wxALIGN_CENTRE_VERTICAL);
  top->AddSpacer(FromDIP(2 * kGap));
  live_ = addCheckBox(*top, "Follow &playing", "Live", true, settingsChosen);
  all->Add(top, 0, wxALL, FromDIP(kMargin));
  all->Add(view_, 1, wxEXPAND | wxLEFT | wxRIGHT, FromDIP(kMargin));
  takeLayout(*all, *view_, {760, 480}, {320, 200});
  const SurfaceCamera usual;
  view_->setCamera({profile_.real(kSection, "Turn", usual.turn), profile_.real(kSection, "Tilt", usual.tilt),
                    profile_.real(kSection, "Zoom", usual.zoom)});
  view_->onPointer = [this](std::optional<SurfacePainter::Spot> spot) { showReadout(spot); };
  showReadout(std::nullopt);
}

bool C3DSpectrumDlg::Show(bool show) {
  if (!show && IsShown()) {
    profile_.setReal(kSection, "Turn", view_->camera().turn);
    profile_.setReal(kSection, "Tilt", view_->camera().tilt);
    profile_.setReal(kSection, "Zoom", view_->camera().zoom);
  }
  return AnalysisDlg::Show(show);
}

// ---- Computing ------------------------------------------------------------------------------------------

C3DSpectrumDlg::Subject C3DSpectrumDlg::subjectOf(const DocumentPanel& front) const {
  const CPlumettaDoc& doc = front.document();
  const SpectrumSettings settings = spectrumSettings();
  Subject subject;
  subject.samples = SampleState::of(doc);
  subject.channels = activeChannels(doc.wave());
  subject.size = settings.size;
  subject.window = static_cast<int>(settings.window);
  if (takePlayed(front, subject)) return subject;
  if (doc.view().hasSelection()) {
    const auto range = doc.selectionOrAll();
    subject.part = Subject::kSelection;
    subject.first = range.first;
    subject.length = range.last - range.first + 1.0;
  } else {
    const auto seen = front.visibleFrames();
    subject.first = seen.first;
    subject.length = seen.length;
  }
  return subject;
}

bool C3DSpectrumDlg::takePlayed(const DocumentPanel& front, Subject& subject) const {
  const auto heard = front.playFrame();
  if (!live_->GetValue() || !heard) return false;
  subject.part = Subject::kPlayed;
  subject.length = kLiveSeconds * subject.samples.sampleRate;
  const double step = subject.length / kSpectra;
  subject.first = step > 0 ? std::floor(*heard / step) * step - subject.length : 0.0;
  return true;
}

SonogramPlan C3DSpectrumDlg::planOf(const Subject& subject) const {
  SonogramPlan plan;
  plan.firstFrame = subject.first;
  plan.framesPerColumn = subject.length / kSpectra;
  plan.columns = kSpectra;
  const double blocks = std::ceil(plan.framesPerColumn / subject.size);
  plan.blocksPerColumn = static_cast<int>(std::clamp<double>(blocks, 1, kMostBlocksPerSpectrum));
  plan.spectrum = spectrumSettings();
  plan.channels = subject.channels;
  plan.together = true;
  return plan;
}

bool C3DSpectrumDlg::follow(DocumentPanel* front) {
  const Subject subject = front != nullptr ? subjectOf(*front) : Subject{};
  const TimeFormat format = front != nullptr ? front->timeFormat() : timeFormat_;
  if (subject != subject_ || format != timeFormat_) {
    subject_ = subject;
    timeFormat_ = format;
    computing_ = front != nullptr && subject.length > 0 && !subject.channels.empty();
    spectra_ = computing_ ? std::make_unique<Sonogram>(front->document().wave(), planOf(subject)) : nullptr;
    SetTitle(front != nullptr ? toWx("3D spectrum – " + front->document().title()) : wxString("3D spectrum"));
    view_->setMoving(subject.part == Subject::kPlayed);
    if (!computing_) showField();
    showState();
  }
  if (!computing_) return false;
  computing_ = spectra_->advance(front->document().wave());
  const auto now = std::chrono::steady_clock::now();
  if (!computing_ || (spectra_->overviewDone() && now - lastShown_ >= kShowInterval)) {
    lastShown_ = now;
    showField();
    showState();
  }
  return computing_;
}

// ---- Showing --------------------------------------------------------------------------------------------

FrequencyAxis C3DSpectrumDlg::frequencies() const {
  const double highest = std::max(subject_.samples.sampleRate / 2.0, 2 * kLowestHz);
  return {logarithmic() ? kLowestHz : 0.0, highest, logarithmic()};
}

void C3DSpectrumDlg::showDecibels() { showField(); }

void C3DSpectrumDlg::showFrequencies() { showField(); }

void C3DSpectrumDlg::showField() {
  showScale();
  if (!spectra_) {
    view_->setField({});
    return;
  }
  const FrequencyRows rows(frequencies(), spectra_->hzPerLine(), spectra_->lines(), kPlaces);
  HeightField field{kSpectra, kPlaces, std::vector<float>(size_t{kSpectra} * kPlaces)};
  const std::span<float> heights(field.heights);
  for (int spectrum = 0; spectrum < kSpectra; ++spectrum) {
    const auto own = heights.subspan(static_cast<size_t>(spectrum) * kPlaces, kPlaces);
    rows.decibels(spectra_->powers(0, spectrum), spectra_->powerScale(spectrum), own);
    for (float& height : own) height = std::clamp(1.0f + height / static_cast<float>(depthDb()), 0.0f, 1.0f);
  }
  view_->setField(std::move(field));
}

void C3DSpectrumDlg::showScale() {
  SurfaceView::Scale scale{frequencies(), depthDb(), {}};
  if (spectra_) {
    const uint32_t rate = std::max(subject_.samples.sampleRate, 1u);
    const TickSpacing ticks = ticksIn(timeFormat_, subject_.length, rate, 1.0 / kTimeLabels);
    const double end = subject_.first + subject_.length;
    for (double frame = std::ceil(std::max(subject_.first, 0.0) / ticks.major) * ticks.major; frame <= end;
         frame += ticks.major) {
      const std::string text = positionIn(timeFormat_, frame, rate, ticks.timeDecimals);
      scale.times.push_back({(frame - subject_.first) / subject_.length, toWx(text)});
    }
  }
  view_->setScale(scale);
}

wxString C3DSpectrumDlg::positionText(double frame) const {
  return toWx(positionIn(timeFormat_, frame, std::max(subject_.samples.sampleRate, 1u)));
}

void C3DSpectrumDlg::showReadout(std::optional<SurfacePainter::Spot> spot) {
  if (!spot || !spectra_) {
    readout_->SetLabel("Drag to turn, the wheel brings it nearer, a double click shows it as at first.");
    return;
  }
  const FrequencyRows rows(frequencies(), spectra_->hzPerLine(), spectra_->lines(), kPlaces);
  std::vector<float> db(kPlaces);
  rows.decibels(spectra_->powers(0, spot->spectrum), spectra_->powerScale(spot->spectrum), db);
  const double hz = frequencies().hz((spot->place + 0.5) / kPlaces);
  wxString text = positionText(std::floor(spectra_->plan().middleOf(spot->spectrum))) + "    " + hzText(hz);
  if (const wxString note = noteText(hz); !note.empty()) text += "    " + note;
  readout_->SetLabel(text + "    " + dbText(db[static_cast<size_t>(spot->place)]));
}

void C3DSpectrumDlg::showState() {
  wxString text = " ";
  if (computing_ && subject_.part != Subject::kPlayed) {
    text = wxString::Format("%.0f %%", 100 * spectra_->fractionDone());
  } else if (spectra_) {
    const double seconds = subject_.length / std::max(subject_.samples.sampleRate, 1u);
    constexpr const char* kParts[] = {"Selection, ", "Visible part, ", "Playing, last "};
    text = kParts[subject_.part] + toWx(formatTime(seconds));
  }
  if (state_->GetLabel() == text) return;
  state_->SetLabel(text);
  Layout();
}

}  // namespace plumetta
