// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form_dialog.h"

#include <wx/panel.h>
#include <wx/settings.h>

#include <algorithm>
#include <cmath>

#include "ui/number_text.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kFieldWidth = 112;
constexpr int kGap = 8;
constexpr int kMargin = 16;

wxColour problemColour() {
  return wxSystemSettings::GetAppearance().IsDark() ? wxColour(255, 138, 128) : wxColour(179, 38, 30);
}

FormDialog::Check boundedNumber(double minimum, double maximum, const std::string& message, bool whole) {
  return [=](const std::string& text) -> std::string {
    const auto value = parseNumber(text);
    if (!value) return "This is not a number.";
    if (whole && *value != std::floor(*value)) return "A whole number is needed.";
    if (*value >= minimum && *value <= maximum) return {};
    return message.empty() ? "From " + numberText(minimum) + " to " + numberText(maximum) + "." : message;
  };
}

}  // namespace

FormDialog::Check numberBetween(double minimum, double maximum, const std::string& message) {
  return boundedNumber(minimum, maximum, message, false);
}

FormDialog::Check wholeNumberBetween(double minimum, double maximum, const std::string& message) {
  return boundedNumber(minimum, maximum, message, true);
}

double checkedNumber(const wxTextEntry& entry) { return parseNumber(fromWx(entry.GetValue())).value_or(0); }

FormDialog::FormDialog(wxWindow* parent, const wxString& title)
    : wxDialog(parent, wxID_ANY, title), grid_(makeGrid()) {
  problemOfAll_ = makeProblem();
  Bind(wxEVT_BUTTON, &FormDialog::onOk, this, wxID_OK);
  Bind(wxEVT_CHAR_HOOK, &FormDialog::onCharHook, this);
}

wxFlexGridSizer* FormDialog::makeGrid() const {
  auto* grid = new wxFlexGridSizer(2, FromDIP(kGap), FromDIP(12));
  grid->AddGrowableCol(1);
  return grid;
}

void FormDialog::addPage(const wxString& title) {
  if (pages_ == nullptr) {
    pages_ = new wxNotebook(this, wxID_ANY);
    delete grid_;  // the dialog has no fields outside of its pages
  }
  auto* page = new wxPanel(pages_);
  grid_ = makeGrid();
  auto* margin = new wxBoxSizer(wxVERTICAL);
  margin->Add(grid_, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  page->SetSizer(margin);
  pages_->AddPage(page, title);
  holder_ = page;
}

void FormDialog::focusOn(wxWindow* window) {
  for (size_t i = 0; pages_ != nullptr && i < pages_->GetPageCount(); ++i) {
    if (pages_->GetPage(i) == window->GetParent()) pages_->SetSelection(i);
  }
  window->SetFocus();
}

// Not every toolkit leads the mnemonic of a label to the field behind it, or Return on a closed list to OK.
void FormDialog::onCharHook(wxKeyEvent& event) {
  if (event.GetKeyCode() == WXK_RETURN && dynamic_cast<wxChoice*>(FindFocus()) != nullptr) {
    wxCommandEvent ok(wxEVT_BUTTON, wxID_OK);
    ProcessWindowEvent(ok);
    return;
  }
  wxWindow* const page = pages_ != nullptr ? pages_->GetCurrentPage() : this;
  const auto found =
      event.GetModifiers() == wxMOD_ALT ? mnemonics_.find({page, event.GetKeyCode()}) : mnemonics_.end();
  if (found == mnemonics_.end()) {
    event.Skip();
    return;
  }
  found->second->SetFocus();
}

wxString FormDialog::withMnemonic(const wxString& label, wxWindow* window) {
  for (size_t i = 0; i < label.length(); ++i) {
    const int key = wxToupper(label[i]);
    const bool taken =
        key < 'A' || key > 'Z' || key == 'O' || key == 'C' || mnemonics_.contains({holder_, key});
    if (taken) continue;  // O and C are those of the buttons
    mnemonics_[{holder_, key}] = window;
    return label.Left(i) + "&" + label.Mid(i);
  }
  return label;
}

wxStaticText* FormDialog::makeProblem() {
  auto* problem = new wxStaticText(holder_, wxID_ANY, wxString());
  problem->SetForegroundColour(problemColour());
  problem->SetFont(GetFont().Smaller());
  problem->Hide();
  return problem;
}

void FormDialog::show(wxStaticText* problem, const std::string& text) {
  if (!text.empty()) problem->SetLabel(toWx(text));
  if (text.empty() && !problem->IsShown()) return;
  problem->Show(!text.empty());
  if (GetSizer() != nullptr) GetSizer()->SetSizeHints(this);
}

void FormDialog::addRow(const wxString& label, wxWindow* window, wxSizer* content, wxStaticText* problem) {
  auto* text = new wxStaticText(holder_, wxID_ANY, label.empty() ? label : withMnemonic(label, window) + ":");
  if (first_ == nullptr) first_ = window;
  // The label belongs to the field, not to the problem below it.
  auto* right = new wxBoxSizer(wxVERTICAL);
  right->Add(content, 0, wxEXPAND);
  if (problem != nullptr) right->Add(problem, 0, wxTOP, FromDIP(2));
  const int labelTop = problem != nullptr ? FromDIP(6) : 0;
  grid_->Add(text, 0, (problem != nullptr ? 0 : wxALIGN_CENTRE_VERTICAL) | wxTOP, labelTop);
  grid_->Add(right, 0, wxEXPAND);
}

void FormDialog::addChecked(const wxString& label, wxWindow* window, wxTextEntry* entry, wxWindow* behind,
                            Check check) {
  wxStaticText* problem = makeProblem();
  auto* content = new wxBoxSizer(wxHORIZONTAL);
  content->Add(window, behind == nullptr ? 1 : 0, wxALIGN_CENTRE_VERTICAL);
  if (behind != nullptr) content->Add(behind, 0, wxALIGN_CENTRE_VERTICAL | wxLEFT, FromDIP(kGap));
  addRow(label, window, content, problem);
  const size_t index = fields_.size();
  fields_.push_back({entry, window, std::move(check), problem});
  window->Bind(wxEVT_TEXT, [this, index](wxCommandEvent& event) {
    fields_[index].touched = true;
    recheck();
    event.Skip();
  });
}

wxTextCtrl* FormDialog::addText(const wxString& label, const wxString& unit, const wxString& value,
                                Check check) {
  const wxSize size = FromDIP(wxSize(unit.empty() && !check ? 2 * kFieldWidth : kFieldWidth, -1));
  auto* text = new wxTextCtrl(holder_, wxID_ANY, value, wxDefaultPosition, size);
  wxWindow* behind = check ? new wxStaticText(holder_, wxID_ANY, unit) : nullptr;
  addChecked(label, text, text, behind, std::move(check));
  return text;
}

wxComboBox* FormDialog::addCombo(const wxString& label, const wxString& unit, const wxString& value,
                                 const wxArrayString& choices, Check check) {
  const wxSize size = FromDIP(wxSize(kFieldWidth, -1));
  auto* combo = new wxComboBox(holder_, wxID_ANY, value, wxDefaultPosition, size, choices);
  addChecked(label, combo, combo, new wxStaticText(holder_, wxID_ANY, unit), std::move(check));
  return combo;
}

FormDialog::NumberWithUnit FormDialog::addNumberWithUnits(const wxString& label, const wxString& value,
                                                          const wxArrayString& units, int selected,
                                                          Check check) {
  const wxSize size = FromDIP(wxSize(kFieldWidth, -1));
  auto* number = new wxTextCtrl(holder_, wxID_ANY, value, wxDefaultPosition, size);
  auto* unit = new wxChoice(holder_, wxID_ANY, wxDefaultPosition, wxDefaultSize, units);
  unit->SetSelection(selected);
  unit->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) { recheck(); });
  addChecked(label, number, number, unit, std::move(check));
  return {number, unit};
}

wxChoice* FormDialog::addChoice(const wxString& label, const wxArrayString& choices, int selected,
                                const wxString& behind) {
  auto* choice =
      new wxChoice(holder_, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(kFieldWidth, -1)), choices);
  choice->SetSelection(selected);
  choice->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) { recheck(); });
  auto* content = new wxBoxSizer(wxHORIZONTAL);
  content->Add(choice, behind.empty() ? 1 : 0);
  if (!behind.empty()) {
    content->Add(new wxStaticText(holder_, wxID_ANY, behind), 0, wxALIGN_CENTRE_VERTICAL | wxLEFT,
                 FromDIP(kGap));
  }
  addRow(label, choice, content, nullptr);
  return choice;
}

wxCheckBox* FormDialog::addCheckBox(const wxString& label, bool value) {
  auto* box = new wxCheckBox(holder_, wxID_ANY, wxString());
  box->SetLabel(withMnemonic(label, box));
  box->SetValue(value);
  box->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) { recheck(); });
  auto* content = new wxBoxSizer(wxHORIZONTAL);
  content->Add(box, 1);
  addRow(wxString(), box, content, nullptr);
  return box;
}

std::vector<wxButton*> FormDialog::addButtons(const std::vector<ButtonPlan>& plans) {
  std::vector<wxButton*> buttons;
  auto* content = new wxBoxSizer(wxHORIZONTAL);
  for (const ButtonPlan& plan : plans) {
    auto* button = buttons.emplace_back(new wxButton(holder_, wxID_ANY, wxString()));
    button->SetLabel(withMnemonic(plan.label, button));
    button->Bind(wxEVT_BUTTON, [action = plan.action](wxCommandEvent&) { action(); });
    content->Add(button, 0, wxRIGHT, FromDIP(kGap));
  }
  if (!buttons.empty()) addRow(wxString(), buttons.front(), content, nullptr);
  return buttons;
}

std::string FormDialog::problemOf(const Field& field) {
  return field.check ? field.check(fromWx(field.entry->GetValue())) : std::string();
}

bool FormDialog::showProblem(Field& field) {
  const std::string problem = problemOf(field);
  show(field.problem, field.touched ? problem : std::string());
  return problem.empty();
}

void FormDialog::recheck() {
  for (Field& field : fields_) showProblem(field);
  show(problemOfAll_, {});
  tellValues();
}

void FormDialog::tellValues() {
  if (!onValues) return;
  const bool each = std::ranges::all_of(fields_, [](const Field& field) { return problemOf(field).empty(); });
  onValues(each && (!checkAll || checkAll().empty()));
}

void FormDialog::onOk(wxCommandEvent& event) {
  for (Field& field : fields_) {
    field.touched = true;
    if (showProblem(field)) continue;
    focusOn(field.window);
    field.entry->SelectAll();
    return;
  }
  const std::string problem = checkAll ? checkAll() : std::string();
  show(problemOfAll_, problem);
  if (problem.empty()) event.Skip();
}

bool FormDialog::ask(const wxString& okLabel) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  if (pages_ != nullptr) {
    all->Add(pages_, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  } else {
    all->Add(grid_, 1, wxEXPAND | wxALL, FromDIP(kMargin));
  }
  if (picture_ != nullptr) all->Add(picture_, 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  all->Add(problemOfAll_, 0, wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  all->Add(CreateButtonSizer(wxOK | wxCANCEL), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(kMargin));
  if (!okLabel.empty()) FindWindow(wxID_OK)->SetLabel(okLabel);
  SetSizerAndFit(all);
  CentreOnParent();
  tellValues();
  // Once the dialog stands: some toolkits put the focus on the default button then.
  CallAfter([this] {
    if (first_ != nullptr) first_->SetFocus();
    if (!fields_.empty() && fields_.front().window == first_) fields_.front().entry->SelectAll();
  });
  return ShowModal() == wxID_OK;
}

}  // namespace plumetta
