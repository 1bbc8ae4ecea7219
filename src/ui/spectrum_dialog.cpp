// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/spectrum_dialog.h"

#include <wx/display.h>
#include <wx/filedlg.h>

#include <algorithm>
#include <cmath>

#include "doc/ruler_ticks.h"
#include "doc/spectrum_file.h"
#include "platform/paths.h"
#include "ui/lane_header.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Spectrum";
constexpr const char* kFilter = "Fft file (*.fft)|*.fft|All Files (*.*)|*.*";
constexpr int kDepths[] = {60, 90, 120, 150};
constexpr double kHeadroomDb = 6.0;
constexpr double kLowestHz = 20.0;  // of the logarithmic axis
constexpr double kPeakProminenceDb = 10.0;
constexpr size_t kMostPeaks = 40;
// How often a spectrum is shown before all of it is there.
constexpr auto kShowInterval = std::chrono::milliseconds(100);
constexpr int kGap = 8;
constexpr int kMargin = 12;

wxString hzText(double hz) {
  return hz < 1000 ? wxString::Format("%.1f Hz", hz) : wxString::Format("%.3f kHz", hz / 1000);
}

// With a real minus sign.
wxString withMinus(wxString text) {
  text.Replace("-", toWx("\u2212"));
  return text;
}

wxString dbText(double db) {
  return db < -300 ? toWx("\u2212\u221E dB") : withMinus(wxString::Format("%.1f dB", db));
}

// Octaves below C0 keep their hyphen's place. The sharp stays a number sign: many fonts lack its own.
wxString noteText(double hz) { return withMinus(toWx(noteName(hz))); }

wxString channelLabel(int channel, int channels) {
  return channels > 2    ? "Channel " + channelName(channel, channels)
         : channels == 2 ? wxString(channel == 0 ? "Left" : "Right")
                         : wxString("Level");
}

}  // namespace

// ---- The window itself ----------------------------------------------------------------------------------

CSpectrumDlg::CSpectrumDlg(wxWindow* parent, Application& app, WindowProfile& profile)
    : wxDialog(parent, wxID_ANY, "Spectrum", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER | wxMAXIMIZE_BOX),
      app_(app),
      profile_(profile),
      plot_(new CurvePlot(this)),
      peakList_(
          new wxListCtrl(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_SINGLE_SEL)),
      readout_(new wxStaticText(this, wxID_ANY, " ", wxDefaultPosition, wxDefaultSize,
                                wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END)),
      state_(new wxStaticText(this, wxID_ANY, " ")) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  auto* top = new wxBoxSizer(wxHORIZONTAL);
  top->Add(makeControls(), 1, wxALIGN_CENTRE_VERTICAL);
  top->Add(makeFileButtons(), 0, wxALIGN_CENTRE_VERTICAL | wxLEFT, FromDIP(2 * kGap));
  all->Add(top, 0, wxEXPAND | wxALL, FromDIP(kMargin));
  makePeakList();
  auto* middle = new wxBoxSizer(wxHORIZONTAL);
  middle->Add(plot_, 1, wxEXPAND);
  middle->Add(peakList_, 0, wxEXPAND | wxLEFT, FromDIP(kGap));
  all->Add(middle, 1, wxEXPAND | wxLEFT | wxRIGHT, FromDIP(kMargin));
  auto* bottom = new wxBoxSizer(wxHORIZONTAL);
  bottom->Add(readout_, 1, wxALIGN_CENTRE_VERTICAL);
  bottom->Add(state_, 0, wxALIGN_CENTRE_VERTICAL | wxLEFT, FromDIP(kGap));
  all->Add(bottom, 0, wxEXPAND | wxALL, FromDIP(kMargin));
  plot_->SetMinSize(FromDIP(wxSize(620, 380)));
  SetSizerAndFit(all);
  const wxSize usual = GetSize();
  plot_->SetMinSize(FromDIP(wxSize(240, 160)));
  SetMinSize(ClientToWindowSize(all->CalcMin()));
  SetSize(usual);
  restorePlace();
  bindPlot();
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { Hide(); });
  Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    if (event.GetKeyCode() == WXK_ESCAPE) {
      Close();
    } else {
      event.Skip();
    }
  });
  showDecibels();
  showReadout(std::nullopt);
}

wxChoice* CSpectrumDlg::addChoice(wxSizer& row, const wxString& label, const wxArrayString& choices,
                                  const char* key, int fallback, void (CSpectrumDlg::*chosen)()) {
  row.Add(new wxStaticText(this, wxID_ANY, label), 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap / 2));
  auto* choice = new wxChoice(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, choices);
  const int stored = profile_.integer(kSection, key, fallback);
  choice->SetSelection(stored >= 0 && stored < static_cast<int>(choices.size()) ? stored : fallback);
  choice->Bind(wxEVT_CHOICE, [this, choice, key, chosen](wxCommandEvent&) {
    profile_.setInteger(kSection, key, choice->GetSelection());
    (this->*chosen)();
  });
  row.Add(choice, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(2 * kGap));
  return choice;
}

wxSizer* CSpectrumDlg::makeControls() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  wxArrayString windows, sizes, depths;
  for (int kind = 0; kind < kWindowKinds; ++kind) windows.Add(windowName(kind));
  for (int size = kSmallestSpectrum; size <= kLargestSpectrum; size *= 2) sizes.Add(std::to_string(size));
  for (const int depth : kDepths) depths.Add(wxString::Format("%d dB", depth));
  const SpectrumSettings usual;
  const int usualSize = sizes.Index(std::to_string(usual.size));
  window_ = addChoice(*row, "&Window:", windows, "Window", static_cast<int>(usual.window),
                      &CSpectrumDlg::settingsChosen);
  size_ = addChoice(*row, "S&ize:", sizes, "Size", usualSize, &CSpectrumDlg::settingsChosen);
  depth_ = addChoice(*row, "&Range:", depths, "Range", 2, &CSpectrumDlg::showDecibels);
  logarithmic_ = new wxCheckBox(this, wxID_ANY, "Lo&garithmic");
  logarithmic_->SetValue(profile_.integer(kSection, "Logarithmic", 1) != 0);
  logarithmic_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) {
    profile_.setInteger(kSection, "Logarithmic", logarithmic_->GetValue() ? 1 : 0);
    showFrequencies();
  });
  row->Add(logarithmic_, 0, wxALIGN_CENTRE_VERTICAL);
  return row;
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
  for (wxButton* button : {save_, loadButton, forget_}) row->Add(button, 0, wxLEFT, FromDIP(kGap / 2));
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

bool CSpectrumDlg::Show(bool show) {
  if (!show && IsShown()) storePlace();
  return wxDialog::Show(show);
}

void CSpectrumDlg::storePlace() {
  const wxSize size = ToDIP(GetSize());
  profile_.setInteger(kSection, "X", GetPosition().x);
  profile_.setInteger(kSection, "Y", GetPosition().y);
  profile_.setInteger(kSection, "Width", size.x);
  profile_.setInteger(kSection, "Height", size.y);
}

// As far as that place can still be seen.
void CSpectrumDlg::restorePlace() {
  const wxSize size(profile_.integer(kSection, "Width", 0), profile_.integer(kSection, "Height", 0));
  const wxPoint at(profile_.integer(kSection, "X", -1), profile_.integer(kSection, "Y", -1));
  if (size.x > 0 && size.y > 0) {
    wxSize wanted = FromDIP(size);
    wanted.IncTo(GetMinSize());
    SetSize(wanted);
  }
  const int display = size.x > 0 ? wxDisplay::GetFromPoint(at) : wxNOT_FOUND;
  if (display == wxNOT_FOUND) {
    CentreOnParent();
  } else {
    SetSize(wxRect(at, GetSize()).Intersect(wxDisplay(static_cast<unsigned>(display)).GetClientArea()));
  }
}

// ---- Computing ------------------------------------------------------------------------------------------

SpectrumSettings CSpectrumDlg::settings() const {
  return {kSmallestSpectrum << size_->GetSelection(), static_cast<WindowKind>(window_->GetSelection())};
}

CSpectrumDlg::Subject CSpectrumDlg::subjectOf(const CPlumettaDoc* doc) const {
  if (doc == nullptr) return {};
  const CWave& wave = doc->wave();
  const auto range = doc->selectionOrAll();
  return {doc,           doc->journal().revision(), wave.samples(),
          wave.frames(), wave.sampleRate(),         range.first,
          range.last,    settings().size,           static_cast<int>(settings().window)};
}

bool CSpectrumDlg::follow(const CPlumettaDoc* doc) {
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
    average_ =
        std::make_unique<SpectrumAverage>(doc->wave(), FrameRange{subject.first, subject.last}, settings());
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
  const bool logarithmic = logarithmic_->GetValue();
  plot_->setFrequencies({logarithmic ? kLowestHz : 0.0, highest, logarithmic});
}

void CSpectrumDlg::showDecibels() { plot_->setDecibels(-kDepths[depth_->GetSelection()], kHeadroomDb); }

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
        (static_cast<double>(subject_.last) - subject_.first + 1) / std::max(subject_.sampleRate, 1u);
    const bool all = subject_.first == 0 && subject_.last + 1 >= subject_.frames;
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
