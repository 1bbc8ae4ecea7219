// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/spectrum_dialog.h"

#include <wx/filedlg.h>

#include <algorithm>
#include <cmath>

#include "doc/ruler_ticks.h"
#include "doc/spectrum_file.h"
#include "platform/paths.h"
#include "ui/spectrum_words.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Spectrum";
constexpr const char* kFilter = "Fft file (*.fft)|*.fft|All Files (*.*)|*.*";
constexpr int kUsualDepthDb = 120;
constexpr double kHeadroomDb = 6.0;
constexpr double kPeakProminenceDb = 10.0;
constexpr size_t kMostPeaks = 40;
// How often a spectrum is shown before all of it is there.
constexpr auto kShowInterval = std::chrono::milliseconds(100);

}  // namespace

// ---- The window itself ----------------------------------------------------------------------------------

CSpectrumDlg::CSpectrumDlg(wxWindow* parent, Application& app, WindowProfile& profile)
    : AnalysisDlg(parent, "Spectrum", kSection, profile),
      app_(app),
      plot_(new CurvePlot(this)),
      peakList_(
          new wxListCtrl(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_SINGLE_SEL)) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(makeSpectrumControls(kSmallestSpectrum, kLargestSpectrum, {}, kUsualDepthDb), 0, wxEXPAND | wxALL,
           FromDIP(kMargin));
  makePeakList();
  auto* side = new wxBoxSizer(wxVERTICAL);
  side->Add(peakList_, 1, wxEXPAND | wxBOTTOM, FromDIP(kGap));
  side->Add(makeFileButtons(), 0, wxEXPAND);
  auto* middle = new wxBoxSizer(wxHORIZONTAL);
  middle->Add(plot_, 1, wxEXPAND);
  middle->Add(side, 0, wxEXPAND | wxLEFT, FromDIP(kGap));
  all->Add(middle, 1, wxEXPAND | wxLEFT | wxRIGHT, FromDIP(kMargin));
  takeLayout(*all, *plot_, {620, 380}, {240, 160});
  bindPlot();
  showDecibels();
  showReadout(std::nullopt);
}

wxSizer* CSpectrumDlg::makeFileButtons() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  save_ = new wxButton(this, wxID_SAVE, "&Save…");
  auto* loadButton = new wxButton(this, wxID_OPEN, "&Load…");
  forget_ = new wxButton(this, wxID_CLEAR, "&Unload");
  save_->SetToolTip("Save this spectrum");
  loadButton->SetToolTip("Show a saved spectrum as a dashed curve");
  forget_->SetToolTip("Take the loaded spectrum away");
  save_->Disable();
  forget_->Disable();
  for (wxButton* button : {save_, loadButton, forget_}) {
    row->Add(button, 1, button == save_ ? 0 : wxLEFT, FromDIP(kGap / 2));
  }
  save_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { save(); });
  loadButton->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { load(); });
  forget_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { forget(); });
  return row;
}

void CSpectrumDlg::makePeakList() {
  peakList_->AppendColumn("Peak", wxLIST_FORMAT_RIGHT, FromDIP(88));
  peakList_->AppendColumn("Level", wxLIST_FORMAT_RIGHT, FromDIP(72));
  peakList_->AppendColumn("Note", wxLIST_FORMAT_LEFT, FromDIP(112));
  peakList_->SetMinSize(wxSize(FromDIP(292), -1));
  peakList_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent& event) {
    const double hz = peaks_[static_cast<size_t>(event.GetIndex())].hz;
    plot_->setMark(hz);
    showReadout(hz);
  });
  peakList_->Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { plot_->setMark(std::nullopt); });
}

void CSpectrumDlg::bindPlot() {
  plot_->onPointer = [this](std::optional<double> hz) { showReadout(hz); };
  plot_->onThemeChanged = [this] { showCurves(); };
}

// ---- Computing ------------------------------------------------------------------------------------------

CSpectrumDlg::Subject CSpectrumDlg::subjectOf(const CPlumettaDoc* doc) const {
  if (doc == nullptr) return {};
  const auto range = doc->selectionOrAll();
  const SpectrumSettings settings = spectrumSettings();
  return {SampleState::of(*doc), range.first, range.last, settings.size, static_cast<int>(settings.window)};
}

bool CSpectrumDlg::follow(DocumentPanel* front) {
  const CPlumettaDoc* doc = front != nullptr ? &front->document() : nullptr;
  const Subject subject = subjectOf(doc);
  if (subject != subject_) start(doc, subject);
  if (!average_) return false;
  const bool more = average_->advance(doc->wave());
  const auto now = std::chrono::steady_clock::now();
  if (!more || now - lastShown_ >= kShowInterval) {
    lastShown_ = now;
    record_ = average_->record();
    if (!more) average_.reset();
    showRecord();
  }
  return more;
}

// What was shown stays until there is something to show in its place.
void CSpectrumDlg::start(const CPlumettaDoc* doc, const Subject& subject) {
  subject_ = subject;
  average_.reset();
  lastShown_ = std::chrono::steady_clock::now();
  if (doc != nullptr) {
    title_ = doc->title();
    SetTitle(toWx("Spectrum – " + title_));
    const FrameRange range{subject.first, subject.last};
    average_ = std::make_unique<SpectrumAverage>(doc->wave(), range, spectrumSettings());
  } else {
    SetTitle("Spectrum");
    record_ = {};
    showRecord();
  }
}

// ---- Showing --------------------------------------------------------------------------------------------

void CSpectrumDlg::showRecord() {
  save_->Enable(record_.channels > 0 && !average_);
  showFrequencies();
  showCurves();
  showState();
  if (!average_) showPeaks();
}

void CSpectrumDlg::addCurves(std::vector<PlotCurve>& curves, const SpectrumRecord& record,
                             const wxString& name, bool reference) const {
  const auto& colours = plot_->theme().curves;
  for (int32_t channel = 0; channel < record.channels; ++channel) {
    PlotCurve curve;
    const wxString label = record.channels > 1 ? channelLabel(channel, record.channels) : wxString();
    curve.name = name.empty() ? label : label.empty() ? name : name + " " + label;
    curve.colour = colours[static_cast<size_t>(channel) % colours.size()];
    curve.reference = reference;
    curve.points.reserve(static_cast<size_t>(record.lines));
    for (int32_t line = 0; line < record.lines; ++line) {
      curve.points.push_back({record.hz(line), spectrumDb(record.value(line, channel))});
    }
    curves.push_back(std::move(curve));
  }
}

void CSpectrumDlg::showCurves() {
  std::vector<PlotCurve> curves;
  addCurves(curves, record_, wxString(), false);
  addCurves(curves, reference_, toWx(referenceName_), true);
  plot_->setCurves(std::move(curves));
}

void CSpectrumDlg::showFrequencies() {
  const double highest =
      std::max({record_.stopHz, record_.channels > 0 ? 0.0 : reference_.stopHz, 2 * kLowestHz});
  plot_->setFrequencies({logarithmic() ? kLowestHz : 0.0, highest, logarithmic()});
}

void CSpectrumDlg::showDecibels() { plot_->setDecibels(-depthDb(), kHeadroomDb); }

void CSpectrumDlg::showPeaks() {
  peaks_ = findPeaks(record_, kPeakProminenceDb, kMostPeaks);
  plot_->setMark(std::nullopt);
  peakList_->Freeze();
  peakList_->DeleteAllItems();
  for (const SpectrumPeak& peak : peaks_) {
    const long row = peakList_->InsertItem(peakList_->GetItemCount(), hzText(peak.hz));
    peakList_->SetItem(row, 1, dbText(peak.db));
    peakList_->SetItem(row, 2, noteText(peak.hz));
  }
  peakList_->Thaw();
}

// Each channel's level at the line nearest to a frequency.
void CSpectrumDlg::showReadout(std::optional<double> hz) {
  if (!hz || record_.lines < 2 || record_.hzPerLine() <= 0) {
    readout_->SetLabel("Point at the curves to read them; the wheel zooms, a double click shows all.");
    return;
  }
  wxString text = hzText(*hz);
  if (const wxString note = noteText(*hz); !note.empty()) text += "    " + note;
  const double line = std::round((*hz - record_.startHz) / record_.hzPerLine());
  const auto nearest = static_cast<int32_t>(std::clamp<double>(line, 0, record_.lines - 1));
  for (int32_t channel = 0; channel < record_.channels; ++channel) {
    text += "    " + channelLabel(channel, record_.channels) + " " +
            dbText(spectrumDb(record_.value(nearest, channel)));
  }
  readout_->SetLabel(text);
}

void CSpectrumDlg::showState() {
  wxString text = " ";
  if (average_) {
    text = wxString::Format("%.0f %%", 100 * average_->fractionDone());
  } else if (record_.channels > 0) {
    const double seconds =
        (static_cast<double>(subject_.last) - subject_.first + 1) / std::max(subject_.samples.sampleRate, 1u);
    const bool all = subject_.first == 0 && subject_.last + 1 >= subject_.samples.frames;
    text = (all ? "Whole file, " : "Selection, ") + toWx(formatTime(seconds));
  }
  if (state_->GetLabel() == text) return;
  state_->SetLabel(text);
  Layout();
}

// ---- Files ----------------------------------------------------------------------------------------------

void CSpectrumDlg::save() {
  wxFileDialog dialog(this, "Save spectrum", toWx(profile_.text(kSection, "Folder", "")),
                      toWx(title_ + ".fft"), kFilter, wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  if (dialog.ShowModal() != wxID_OK) return;
  std::string path = fromWx(dialog.GetPath());
  if (extensionOf(path).empty()) path += ".fft";
  profile_.setText(kSection, "Folder", folderOf(path));
  const SaveResult result = saveSpectrum(app_.files(), path, record_);
  if (!result.saved) app_.prompter().message("Unable to save " + path + "\n" + result.reason);
}

void CSpectrumDlg::load() {
  wxFileDialog dialog(this, "Load spectrum", toWx(profile_.text(kSection, "Folder", "")), wxString(), kFilter,
                      wxFD_OPEN | wxFD_FILE_MUST_EXIST);
  if (dialog.ShowModal() != wxID_OK) return;
  const std::string path = fromWx(dialog.GetPath());
  profile_.setText(kSection, "Folder", folderOf(path));
  SpectrumRecord record;
  const LoadResult result = loadSpectrum(app_.files(), path, record);
  if (result.status != LoadStatus::loaded) {
    app_.prompter().message("Unable to open " + path + "\n" + result.reason);
    return;
  }
  reference_ = std::move(record);
  referenceName_ = fileNameOf(path);
  forget_->Enable();
  showFrequencies();
  showCurves();
}

void CSpectrumDlg::forget() {
  reference_ = {};
  forget_->Disable();
  showFrequencies();
  showCurves();
}

}  // namespace plumetta
