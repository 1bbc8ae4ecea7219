// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mp3_rate_dialog.h"

#include <wx/button.h>
#include <wx/radiobut.h>

#include <algorithm>
#include <array>

#include "formats/mp3_writer.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "MP3 export";
constexpr const char* kBitRate = "Bit rate";
constexpr std::array<int, 4> kUsualRates{128, 192, 256, 320};
constexpr int kMargin = 16;
constexpr int kGap = 8;

wxString rateText(int kbits) { return wxString::Format("%d kbit/s", kbits); }

wxArrayString rateTexts() {
  wxArrayString texts;
  for (const int rate : kMp3BitRates) texts.push_back(rateText(rate));
  return texts;
}

int indexOf(int bitRateKbits) {
  const auto found = std::find(kMp3BitRates.begin(), kMp3BitRates.end(), bitRateKbits);
  return found == kMp3BitRates.end() ? wxNOT_FOUND : static_cast<int>(found - kMp3BitRates.begin());
}

// A button for each usual rate, and one for whatever the list holds.
class Mp3RateDialog : public wxDialog {
 public:
  Mp3RateDialog(wxWindow* parent, int bitRateKbits);

  int bitRateKbits() const { return bitRateKbits_; }

 private:
  void addUsualRate(wxSizer& column, size_t i);
  void addCustomRate(wxSizer& column);
  void choose(int kbits);
  void askCustom();

  int bitRateKbits_;
  std::array<wxRadioButton*, kUsualRates.size()> usual_{};
  wxRadioButton* custom_ = nullptr;
};

Mp3RateDialog::Mp3RateDialog(wxWindow* parent, int bitRateKbits)
    : wxDialog(parent, wxID_ANY, "Save as MP3"), bitRateKbits_(bitRateKbits) {
  auto* column = new wxBoxSizer(wxVERTICAL);
  column->Add(new wxStaticText(this, wxID_ANY, "Bit rate:"), 0, wxBOTTOM, FromDIP(kGap));
  for (size_t i = 0; i < kUsualRates.size(); ++i) addUsualRate(*column, i);
  addCustomRate(*column);
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(column, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  all->Add(CreateButtonSizer(wxOK | wxCANCEL), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  SetSizer(all);
  choose(bitRateKbits);
  CentreOnParent();
}

void Mp3RateDialog::addUsualRate(wxSizer& column, size_t i) {
  const int kbits = kUsualRates[i];
  usual_[i] = new wxRadioButton(this, wxID_ANY, "&" + rateText(kbits), wxDefaultPosition, wxDefaultSize,
                                i == 0 ? wxRB_GROUP : 0);
  usual_[i]->Bind(wxEVT_RADIOBUTTON, [this, kbits](wxCommandEvent&) { bitRateKbits_ = kbits; });
  column.Add(usual_[i], 0, wxBOTTOM, FromDIP(kGap));
}

void Mp3RateDialog::addCustomRate(wxSizer& column) {
  custom_ = new wxRadioButton(this, wxID_ANY, "Another rate");
  auto* list = new wxButton(this, wxID_ANY, wxString(L"&Custom\u2026"));
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(custom_, 1, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(2 * kGap));
  row->Add(list, 0, wxALIGN_CENTRE_VERTICAL);
  column.Add(row, 0, wxEXPAND);
  custom_->Bind(wxEVT_RADIOBUTTON, [this](wxCommandEvent&) { askCustom(); });
  list->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { askCustom(); });
}

void Mp3RateDialog::choose(int kbits) {
  bitRateKbits_ = kbits;
  const auto found = std::find(kUsualRates.begin(), kUsualRates.end(), kbits);
  wxRadioButton* button =
      found == kUsualRates.end() ? custom_ : usual_[static_cast<size_t>(found - kUsualRates.begin())];
  if (button == custom_) custom_->SetLabel(rateText(kbits));
  button->SetValue(true);
  GetSizer()->SetSizeHints(this);
  button->SetFocus();
}

// A cancelled list leaves the rate as it was.
void Mp3RateDialog::askCustom() {
  CMP3CustomDlg dialog(this, bitRateKbits_);
  choose(dialog.askBitRate().value_or(bitRateKbits_));
}

}  // namespace

CMP3CustomDlg::CMP3CustomDlg(wxWindow* parent, int bitRateKbits)
    : FormDialog(parent, "Custom bit rate"),
      rates_(addChoice("Bit rate", rateTexts(), indexOf(bitRateKbits))) {
  checkAll = [this] { return rates_->GetSelection() == wxNOT_FOUND ? "Choose a bit rate." : std::string(); };
}

std::optional<int> CMP3CustomDlg::askBitRate() {
  if (!ask()) return std::nullopt;
  return kMp3BitRates[static_cast<size_t>(rates_->GetSelection())];
}

int rememberedMp3BitRate(const WindowProfile& profile) {
  return profile.integer(kSection, kBitRate, SaveOptions{}.bitRateKbits);
}

std::optional<int> askMp3BitRate(wxWindow* parent, WindowProfile& profile) {
  Mp3RateDialog dialog(parent, rememberedMp3BitRate(profile));
  if (dialog.ShowModal() != wxID_OK) return std::nullopt;
  profile.setInteger(kSection, kBitRate, dialog.bitRateKbits());
  return dialog.bitRateKbits();
}

}  // namespace plumetta
