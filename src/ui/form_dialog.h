// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/combobox.h>
#include <wx/dialog.h>
#include <wx/notebook.h>
#include <wx/radiobox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace plumetta {

// A dialog of labelled fields with their units. What is wrong with a value stands below its field as soon as
// it is typed, and OK is refused until every value can be taken.
class FormDialog : public wxDialog {
 public:
  // What is wrong with a text, in a sentence; empty when nothing is.
  using Check = std::function<std::string(const std::string& text)>;

  FormDialog(wxWindow* parent, const wxString& title);

  wxTextCtrl* addText(const wxString& label, const wxString& unit, const wxString& value, Check check);
  wxComboBox* addCombo(const wxString& label, const wxString& unit, const wxString& value,
                       const wxArrayString& choices, Check check);
  wxChoice* addChoice(const wxString& label, const wxArrayString& choices, int selected,
                      const wxString& behind = wxString());
  wxCheckBox* addCheckBox(const wxString& label, bool value);
  // In a row of their own, for what is done at once and not on OK.
  struct ButtonPlan {
    wxString label;
    std::function<void()> action;
  };
  std::vector<wxButton*> addButtons(const std::vector<ButtonPlan>& plans);
  // A number with the unit it is given in.
  struct NumberWithUnit {
    wxTextCtrl* number;
    wxChoice* unit;
  };
  NumberWithUnit addNumberWithUnits(const wxString& label, const wxString& value, const wxArrayString& units,
                                    int selected, Check check);
  // The fields that follow stand on a page of their own, behind a tab.
  void addPage(const wxString& title);
  // What is wrong with all values together once each can be taken; shown below the fields.
  std::function<std::string()> checkAll;
  // Told of every change, and once before the dialog is shown, whether all values can be taken.
  std::function<void(bool allGood)> onValues;
  // A picture of what the values mean, below the fields.
  void setPicture(wxWindow* picture) { picture_ = picture; }
  // Looks at every field again, when what one may hold depends on another.
  void recheck();
  // Adds the buttons, sizes the dialog and shows it. True when OK was chosen.
  bool ask(const wxString& okLabel = wxString());

 private:
  struct Field {
    wxTextEntry* entry;
    wxWindow* window;
    Check check;
    wxStaticText* problem;
    bool touched = false;
  };

  // `window` takes the focus when the mnemonic of the label is pressed.
  void addRow(const wxString& label, wxWindow* window, wxSizer* content, wxStaticText* problem);
  // The label with a mnemonic that no other field has.
  wxString withMnemonic(const wxString& label, wxWindow* window);
  wxStaticText* makeProblem();
  void show(wxStaticText* problem, const std::string& text);
  // The row of a checked field: the control, what stands behind it, and its problem below.
  void addChecked(const wxString& label, wxWindow* window, wxTextEntry* entry, wxWindow* behind, Check check);
  // Gives a field the focus, its page coming to the front.
  void focusOn(wxWindow* window);
  wxFlexGridSizer* makeGrid() const;
  bool showProblem(Field& field);
  static std::string problemOf(const Field& field);
  void tellValues();
  void onOk(wxCommandEvent& event);
  void onCharHook(wxKeyEvent& event);

  wxWindow* holder_ = this;  // of the fields: the dialog, or the page that is being filled
  wxNotebook* pages_ = nullptr;
  wxFlexGridSizer* grid_;
  std::vector<Field> fields_;
  std::map<std::pair<wxWindow*, int>, wxWindow*> mnemonics_;  // by page and capital letter
  wxStaticText* problemOfAll_;
  wxWindow* picture_ = nullptr;
  wxWindow* first_ = nullptr;
};

// Checks for the common cases. `message` empty makes one up from the bounds.
FormDialog::Check numberBetween(double minimum, double maximum, const std::string& message = {});
FormDialog::Check wholeNumberBetween(double minimum, double maximum, const std::string& message = {});
// The number in a field that has passed its check.
double checkedNumber(const wxTextEntry& entry);

}  // namespace plumetta
