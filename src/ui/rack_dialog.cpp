// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/rack_dialog.h"

#include <wx/display.h>

#include <algorithm>
#include <cmath>

#include "ui/text.h"
#include "ui/toolbar_icons.h"
#include "ui/window_place.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "VST rack";
constexpr int kGap = 8;
constexpr int kMargin = 12;
constexpr int kSliderSteps = 1000;
constexpr int kFollowMilliseconds = 200;

}  // namespace

// ---- The window itself ----------------------------------------------------------------------------------

CVSTRackDlg::CVSTRackDlg(wxWindow* parent, Application& app, WindowProfile& profile, PluginEditors& editors,
                         std::function<bool()> mayChange)
    : wxDialog(parent, wxID_ANY, "VST rack", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER | wxMAXIMIZE_BOX),
      app_(app),
      rack_(app.rack()),
      profile_(profile),
      editors_(editors),
      mayChange_(std::move(mayChange)),
      positions_(new PositionList(this, rack_)) {
  SetIcons(programIcons());
  auto* sides = new wxBoxSizer(wxHORIZONTAL);
  sides->Add(makeLeft(), 5, wxEXPAND | wxRIGHT, FromDIP(2 * kGap));
  sides->Add(makeRight(), 4, wxEXPAND);
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(sides, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  all->Add(makeBottom(), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  SetSizerAndFit(all);
  SetMinSize(GetSize());
  restorePlace();
  rack_.positionChanged = [this](int position) {
    positions_->RefreshRow(static_cast<size_t>(position));
    if (position == selected()) showPosition();
    showChain();
  };
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onTimer(); });
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { Hide(); });
  Bind(wxEVT_CHAR_HOOK, &CVSTRackDlg::onListKey, this);
  select(0);
  showChain();
}

CVSTRackDlg::~CVSTRackDlg() { rack_.positionChanged = nullptr; }

wxButton* CVSTRackDlg::addButton(wxSizer& row, const char* label, const char* hint,
                                 void (CVSTRackDlg::*run)()) {
  auto* button = new wxButton(this, wxID_ANY, toWx(label), wxDefaultPosition, wxDefaultSize, wxBU_EXACTFIT);
  button->SetToolTip(toWx(hint));
  button->Bind(wxEVT_BUTTON, [this, run](wxCommandEvent&) {
    if (mayChange_()) (this->*run)();
  });
  row.Add(button, 1, wxEXPAND | wxRIGHT, FromDIP(kGap / 2));
  return button;
}

wxSizer* CVSTRackDlg::makeLeft() {
  auto* column = new wxBoxSizer(wxVERTICAL);
  switch_ = new wxCheckBox(this, wxID_ANY, "&Play through the rack");
  switch_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) {
    if (onSwitched) onSwitched();
  });
  column->Add(switch_, 0, wxBOTTOM, FromDIP(kGap));
  column->Add(positions_, 1, wxEXPAND | wxBOTTOM, FromDIP(kGap));
  positions_->Bind(wxEVT_LISTBOX, [this](wxCommandEvent&) { showPosition(); });
  positions_->Bind(wxEVT_LISTBOX_DCLICK, [this](wxCommandEvent&) { activate(); });
  auto* upper = new wxBoxSizer(wxHORIZONTAL);
  addButton(*upper, "&Add…", "A plug-in of the list, at the first free position", &CVSTRackDlg::add);
  addButton(*upper, "From &file…", "A plug-in's file, at the first free position", &CVSTRackDlg::addFile);
  up_ = addButton(*upper, "&Up", "Sound comes to the plug-in earlier", &CVSTRackDlg::moveUp);
  down_ = addButton(*upper, "&Down", "Sound comes to the plug-in later", &CVSTRackDlg::moveDown);
  auto* lower = new wxBoxSizer(wxHORIZONTAL);
  editor_ = addButton(*lower, "&Editor", "Shows the plug-in's own window", &CVSTRackDlg::showEditor);
  mute_ = addButton(*lower, "&Mute", "Sound passes by the plug-in", &CVSTRackDlg::toggleMute);
  addButton(*lower, "Re&place…", "Puts a plug-in of the list at this position", &CVSTRackDlg::replace);
  remove_ = addButton(*lower, "&Remove", "Leaves the position empty", &CVSTRackDlg::remove);
  clear_ = addButton(*lower, "&Clear", "Removes every plug-in", &CVSTRackDlg::clear);
  column->Add(upper, 0, wxEXPAND | wxBOTTOM, FromDIP(kGap / 2));
  column->Add(lower, 0, wxEXPAND);
  return column;
}

wxSizer* CVSTRackDlg::makeRight() {
  auto* column = new wxBoxSizer(wxVERTICAL);
  programs_ = new ProgramTable(this, rack_);
  programs_->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent&) { chooseProgram(); });
  programs_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { chooseProgram(); });
  column->Add(programs_, 2, wxEXPAND | wxBOTTOM, FromDIP(kGap / 2));
  auto* files = new wxGridSizer(2, wxSize(0, FromDIP(kGap / 2)));
  loadPreset_ = addButton(*files, "Load preset…", "Into the selected program", &CVSTRackDlg::loadPreset);
  savePreset_ = addButton(*files, "Save preset…", "The selected program", &CVSTRackDlg::savePreset);
  loadBank_ = addButton(*files, "Load bank…", "All programs", &CVSTRackDlg::loadBank);
  saveBank_ = addButton(*files, "Save bank…", "All programs", &CVSTRackDlg::saveBank);
  column->Add(files, 0, wxEXPAND | wxBOTTOM, FromDIP(kGap));
  parameters_ = new ParameterTable(this, rack_);
  parameters_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { showParameter(); });
  column->Add(parameters_, 3, wxEXPAND | wxBOTTOM, FromDIP(kGap / 2));
  slider_ = new wxSlider(this, wxID_ANY, 0, 0, kSliderSteps);
  slider_->SetName("Parameter");
  slider_->Bind(wxEVT_SLIDER, [this](wxCommandEvent&) { moveParameter(); });
  column->Add(slider_, 0, wxEXPAND);
  value_ = new wxStaticText(this, wxID_ANY, " ", wxDefaultPosition, wxDefaultSize,
                            wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
  column->Add(value_, 0, wxEXPAND | wxLEFT | wxRIGHT, FromDIP(kGap));
  return column;
}

wxSizer* CVSTRackDlg::makeBottom() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  facts_ = new wxStaticText(this, wxID_ANY, " ", wxDefaultPosition, wxDefaultSize, wxST_NO_AUTORESIZE);
  row->Add(facts_, 1, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  auto* buttons = new wxBoxSizer(wxHORIZONTAL);
  addButton(*buttons, "&Load chain…", "Replaces the whole rack", &CVSTRackDlg::loadChain);
  saveChain_ = addButton(*buttons, "&Save chain…", "The whole rack", &CVSTRackDlg::saveChain);
  apply_ = addButton(*buttons, "A&pply", "The plug-ins over the selection, or over the whole file",
                     &CVSTRackDlg::apply);
  row->Add(buttons, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  auto* close = new wxButton(this, wxID_CLOSE);
  close->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
  row->Add(close, 0, wxALIGN_CENTRE_VERTICAL);
  return row;
}

bool CVSTRackDlg::Show(bool show) {
  if (!show && IsShown()) {
    storePlace();
    rack_.closeAllEditors();
  }
  if (show) {
    showPosition();
    showChain();
    timer_.Start(kFollowMilliseconds);
  } else {
    timer_.Stop();
  }
  const bool changed = wxDialog::Show(show);
  if (show) positions_->SetFocus();
  return changed;
}

void CVSTRackDlg::storePlace() {
  const wxSize size = ToDIP(GetSize());
  profile_.setTexts(kSection, {{"X", std::to_string(GetPosition().x)},
                               {"Y", std::to_string(GetPosition().y)},
                               {"Width", std::to_string(size.x)},
                               {"Height", std::to_string(size.y)}});
}

// As far as that place can still be seen.
void CVSTRackDlg::restorePlace() {
  wxSize size =
      FromDIP(wxSize(profile_.integer(kSection, "Width", 0), profile_.integer(kSection, "Height", 0)));
  const bool stored = size.x > 0 && size.y > 0;
  size.IncTo(GetMinSize());
  SetSize(size);
  const wxPoint at(profile_.integer(kSection, "X", -1), profile_.integer(kSection, "Y", -1));
  if (stored && wxDisplay::GetFromPoint(at) != wxNOT_FOUND) {
    SetPosition(at);
  } else {
    CentreOnParent();
  }
  keepOnDisplay(*this);
}

// ---- What it shows --------------------------------------------------------------------------------------

void CVSTRackDlg::select(int position) {
  positions_->SetSelection(std::clamp(position, 0, rack_.positionCount() - 1));
  showPosition();
}

void CVSTRackDlg::showPosition() {
  const VstPlugin* plugin = rack_.pluginAt(selected());
  const bool occupied = plugin != nullptr;
  programs_->show(selected());
  parameters_->show(selected());
  showParameter();
  for (wxButton* button :
       {remove_, mute_, editor_, up_, down_, loadPreset_, savePreset_, loadBank_, saveBank_}) {
    button->Enable(occupied);
  }
  if (selected() == 0) up_->Disable();
  if (selected() + 1 == rack_.positionCount()) down_->Disable();
  mute_->SetLabel(rack_.isMuted(selected()) ? "Un&mute" : "&Mute");
  showChain();
}

void CVSTRackDlg::showParameter() {
  const VstPlugin* plugin = rack_.pluginAt(selected());
  const int index = parameters_->selected();
  const bool there = plugin != nullptr && index >= 0 && index < plugin->parameterCount();
  slider_->Enable(there);
  if (!there) {
    slider_->SetValue(0);
    value_->SetLabel(" ");
    return;
  }
  const float value = std::clamp(plugin->parameter(index), 0.0f, 1.0f);
  slider_->SetValue(static_cast<int>(std::lround(value * kSliderSteps)));
  value_->SetLabel(toWx(plugin->parameterName(index) + ": " + rack_.parameterText(selected(), index)));
}

void CVSTRackDlg::showChain() {
  const bool any = !rack_.isEmpty();
  clear_->Enable(any);
  saveChain_->Enable(any);
  apply_->Enable(any && !app_.documents().empty());
  switch_->SetValue(app_.rackOn());
  const wxString text = pinText() + latencyText();
  if (facts_->GetLabel() != text) facts_->SetLabel(text);
}

// One that has fewer channels than the file leaves the others out.
wxString CVSTRackDlg::pinText() const {
  const VstPlugin* plugin = rack_.pluginAt(selected());
  if (plugin == nullptr) return wxString();
  return wxString::Format("%d in, %d out   ", plugin->inputCount(), plugin->outputCount());
}

wxString CVSTRackDlg::latencyText() const {
  const auto frames = static_cast<double>(rack_.latencyFrames());
  if (frames == 0) return "No latency";
  return wxString::Format("Latency %.0f samples (%.1f ms)", frames,
                          1000 * frames / static_cast<double>(rack_.host().sampleRate()));
}

// What plug-ins, the transport bar or a fault have changed meanwhile.
void CVSTRackDlg::onTimer() {
  positions_->follow();
  if (parameters_->follow() && !slider_->HasCapture()) showParameter();
  showChain();
}

// ---- Plug-ins -------------------------------------------------------------------------------------------

void CVSTRackDlg::addAtFirstFree(const std::string& path) {
  int position = 0;
  while (position < rack_.positionCount() && rack_.occupied(position)) ++position;
  if (position == rack_.positionCount()) return app_.prompter().message(kRackFull);
  place(position, path);
}

void CVSTRackDlg::place(int position, const std::string& path) {
  const VstPlugin* occupant = rack_.pluginAt(position);
  if (occupant != nullptr && !app_.prompter().question(occupant->displayName() +
                                                       " is at this position. Do you want to replace it?")) {
    return;
  }
  if (!agreesToCrashed(app_, path)) return;
  app_.secureDocuments();
  RackAddition addition;
  {
    const BusyScope busy(app_.prompter());
    addition = rack_.addAt(position, path);
  }
  if (!addition.message.empty()) return app_.prompter().message(addition.message);
  select(addition.position);
}

void CVSTRackDlg::remove() {
  const int position = selected();
  if (rack_.remove(position)) select(position + 1);
}

void CVSTRackDlg::move(int by) {
  if (rack_.occupied(selected()) && rack_.exchange(selected(), selected() + by)) select(selected() + by);
}

void CVSTRackDlg::toggleMute() { rack_.setMuted(selected(), !rack_.isMuted(selected())); }

void CVSTRackDlg::showEditor() {
  if (rack_.occupied(selected()) && !editors_.show(selected())) app_.prompter().message(kNoVstGui);
}

void CVSTRackDlg::activate() {
  if (!mayChange_()) return;
  rack_.occupied(selected()) ? showEditor() : replace();
}

void CVSTRackDlg::clear() {
  rack_.clear();
  select(0);
}

void CVSTRackDlg::apply() {
  if (onApply) onApply();
}

void CVSTRackDlg::chooseProgram() {
  const long program = programs_->GetFirstSelected();
  const int slot = rack_.slotAt(selected());
  if (program >= 0 && slot >= 0 && program != rack_.programOf(slot)) {
    rack_.selectProgram(selected(), static_cast<int>(program));
  }
}

void CVSTRackDlg::moveParameter() {
  const int index = parameters_->selected();
  rack_.setParameter(selected(), index, static_cast<float>(slider_->GetValue()) / kSliderSteps);
}

// The list's own keys; the space bar plays wherever it presses no button.
void CVSTRackDlg::onListKey(wxKeyEvent& event) {
  const bool onList = positions_->HasFocus();
  const int key = event.GetKeyCode();
  if (key == WXK_ESCAPE) {
    Close();
  } else if (onList && event.ControlDown() && (key == WXK_UP || key == WXK_DOWN) && mayChange_()) {
    move(key == WXK_UP ? -1 : 1);
  } else if (onList && key == WXK_DELETE && mayChange_()) {
    remove();
  } else if (onList && (key == WXK_RETURN || key == WXK_NUMPAD_ENTER)) {
    activate();
  } else if (onList && key == WXK_INSERT && mayChange_()) {
    replace();
  } else if (key == WXK_SPACE && dynamic_cast<wxAnyButton*>(FindFocus()) == nullptr && !switch_->HasFocus() &&
             onPlayKey) {
    onPlayKey();
  } else {
    event.Skip();
  }
}

}  // namespace plumetta
