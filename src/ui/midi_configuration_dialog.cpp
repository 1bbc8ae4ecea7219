// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/midi_configuration_dialog.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <algorithm>

#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kGap = 8;
constexpr int kMargin = 16;
constexpr int kListHeight = 340;
constexpr int kLookMilliseconds = 50;  // how often learning looks for a controller
constexpr long kNumberColumn = 1;

}  // namespace

CMidiConfigurationDlg::CMidiConfigurationDlg(wxWindow* parent, MidiRemote& remote, MidiSettings& settings,
                                             Prompter& prompter)
    : wxDialog(parent, wxID_ANY, "MIDI remote control"),
      remote_(remote),
      settings_(settings),
      prompter_(prompter) {
  for (size_t slot = 0; slot < kMidiSlots; ++slot) openBefore_[slot] = remote_.isOpen(slot);
  auto* columns = new wxBoxSizer(wxHORIZONTAL);
  columns->Add(makeDevices(), 1, wxEXPAND | wxRIGHT, FromDIP(kMargin));
  columns->Add(makeCommands(), 1, wxEXPAND);
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(columns, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  all->Add(makeButtons(), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  show(settings_.controllers);
  select(0);
  SetSizerAndFit(all);
  CentreOnParent();
  Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onTimer(); });
  timer_.SetOwner(this);
}

CMidiConfigurationDlg::~CMidiConfigurationDlg() {
  stopLearning();
  if (devicesTouched_ && !applied_) openMidiDevices(remote_, openBefore_, prompter_);
}

wxSizer* CMidiConfigurationDlg::makeDevices() {
  auto* column = new wxBoxSizer(wxVERTICAL);
  column->Add(new wxStaticText(this, wxID_ANY, "&Input devices:"), 0, wxBOTTOM, FromDIP(kGap / 2));
  wxArrayString names;
  std::vector<std::string> present = remote_.deviceNames();
  if (present.size() > kMidiSlots) present.resize(kMidiSlots);
  for (const std::string& name : present) names.Add(toWx(name));
  devices_ = new wxCheckListBox(this, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(260, kListHeight)), names);
  for (unsigned slot = 0; slot < names.size(); ++slot) devices_->Check(slot, openBefore_[slot]);
  column->Add(devices_, 1, wxEXPAND);
  if (names.empty()) {
    column->Add(new wxStaticText(this, wxID_ANY, "There is no MIDI input device."), 0, wxTOP, FromDIP(kGap));
  }
  return column;
}

wxSizer* CMidiConfigurationDlg::makeCommands() {
  auto* column = new wxBoxSizer(wxVERTICAL);
  column->Add(new wxStaticText(this, wxID_ANY, "&Commands and their controllers:"), 0, wxBOTTOM,
              FromDIP(kGap / 2));
  commands_ = new wxListView(this, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(320, kListHeight)),
                             wxLC_REPORT | wxLC_SINGLE_SEL);
  commands_->AppendColumn("Command", wxLIST_FORMAT_LEFT, FromDIP(216));
  commands_->AppendColumn("Controller", wxLIST_FORMAT_RIGHT, FromDIP(88));
  for (size_t i = 0; i < kRemoteCommandCount; ++i) {
    commands_->InsertItem(static_cast<long>(i), toWx(kRemoteCommands[i].name));
  }
  column->Add(commands_, 1, wxEXPAND | wxBOTTOM, FromDIP(kGap));
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  row->Add(new wxStaticText(this, wxID_ANY, "&Number:"), 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  number_ = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, FromDIP(wxSize(72, -1)));
  row->Add(number_, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  learn_ = new wxToggleButton(this, wxID_ANY, "&Learn");
  learn_->SetToolTip("Takes the controller that is moved next");
  row->Add(learn_, 1, wxALIGN_CENTRE_VERTICAL);
  column->Add(row, 0, wxEXPAND);
  commands_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent& event) {
    number_->ChangeValue(commands_->GetItemText(event.GetIndex(), kNumberColumn));
  });
  // The field belongs to the command that is selected; there may be none.
  number_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
    const long command = commands_->GetFirstSelected();
    if (command >= 0) commands_->SetItem(command, kNumberColumn, number_->GetValue());
  });
  learn_->Bind(wxEVT_TOGGLEBUTTON, [this](wxCommandEvent&) { onLearn(); });
  return column;
}

wxSizer* CMidiConfigurationDlg::makeButtons() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  auto* reset = new wxButton(this, wxID_ANY, "&Reset");
  reset->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { onReset(); });
  row->Add(reset, 0, wxALIGN_CENTRE_VERTICAL);
  row->AddStretchSpacer();
  row->Add(CreateButtonSizer(wxOK | wxCANCEL), 0, wxALIGN_CENTRE_VERTICAL);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { onOk(); }, wxID_OK);
  return row;
}

void CMidiConfigurationDlg::show(const RemoteControllers& controllers) {
  long command = 0;
  for (const int controller : controllers) setNumber(command++, wxString::Format("%d", controller));
}

void CMidiConfigurationDlg::setNumber(long command, const wxString& number) {
  commands_->SetItem(command, kNumberColumn, number);
  if (commands_->GetFirstSelected() == command) number_->ChangeValue(number);
}

void CMidiConfigurationDlg::select(long command) {
  commands_->Select(command);
  commands_->Focus(command);
  number_->SetFocus();
  number_->SelectAll();
}

std::array<bool, kMidiSlots> CMidiConfigurationDlg::chosenDevices() const {
  std::array<bool, kMidiSlots> chosen{};
  for (unsigned slot = 0; slot < devices_->GetCount(); ++slot) chosen[slot] = devices_->IsChecked(slot);
  return chosen;
}

void CMidiConfigurationDlg::onLearn() {
  if (!learn_->GetValue()) {
    stopLearning();
    return;
  }
  const auto chosen = chosenDevices();
  for (size_t slot = 0; slot < kMidiSlots; ++slot) {
    if (chosen[slot] == remote_.isOpen(slot)) continue;
    devicesTouched_ = true;
    openMidiDevices(remote_, chosen, prompter_);
    break;
  }
  if (!remote_.anyOpen()) {
    learn_->SetValue(false);
    prompter_.message("Choose a device that sends first.");
    return;
  }
  learn_->SetLabel(toWx("Move a controller…"));
  remote_.startLearning();
  timer_.Start(kLookMilliseconds);
}

void CMidiConfigurationDlg::onTimer() {
  const auto controller = remote_.takeLearned();
  if (!controller) return;
  const long command = commands_->GetFirstSelected();
  if (command >= 0) setNumber(command, wxString::Format("%d", *controller));
  stopLearning();
}

void CMidiConfigurationDlg::stopLearning() {
  timer_.Stop();
  remote_.stopLearning();
  learn_->SetValue(false);
  learn_->SetLabel("&Learn");
}

void CMidiConfigurationDlg::onReset() {
  stopLearning();
  for (unsigned slot = 0; slot < devices_->GetCount(); ++slot) devices_->Check(slot, false);
  show(defaultControllers());
}

void CMidiConfigurationDlg::onOk() {
  stopLearning();
  std::array<std::string, kRemoteCommandCount> numbers;
  for (size_t i = 0; i < numbers.size(); ++i) {
    numbers[i] = fromWx(commands_->GetItemText(static_cast<long>(i), kNumberColumn));
  }
  if (const auto fault = checkControllers(numbers)) {
    select(static_cast<long>(fault->command));
    prompter_.message(fault->message);
    return;
  }
  MidiChoice choice{chosenDevices(), {}};
  for (size_t i = 0; i < numbers.size(); ++i) choice.controllers[i] = std::stoi(numbers[i]);
  applied_ = true;
  applyMidiChoice(remote_, choice, settings_, prompter_);
  EndModal(wxID_OK);
}

}  // namespace plumetta
