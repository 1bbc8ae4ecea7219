// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/save_question.h"

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include "ui/text.h"

namespace plumetta {

SaveAnswer askToSave(wxWindow* parent, const std::string& title, bool several) {
  wxDialog dialog(parent, wxID_ANY, "Save changes");
  const int gap = dialog.FromDIP(8);

  auto* question = new wxStaticText(&dialog, wxID_ANY, toWx("Save the changes to “" + title + "”?"));
  question->SetFont(question->GetFont().Bold());
  auto* consequence = new wxStaticText(&dialog, wxID_ANY, "Without saving they are lost.");
  auto* words = new wxBoxSizer(wxVERTICAL);
  words->Add(question);
  words->Add(consequence, 0, wxTOP, gap);

  auto* buttons = new wxBoxSizer(wxHORIZONTAL);
  const auto addButton = [&](int id, const wxString& label) {
    auto* button = new wxButton(&dialog, id, label);
    buttons->Add(button, 0, buttons->IsEmpty() ? 0 : wxLEFT, gap);
    button->Bind(wxEVT_BUTTON, [&dialog, id](wxCommandEvent&) { dialog.EndModal(id); });
    return button;
  };
  addButton(wxID_NO, "&Don't save");
  buttons->AddStretchSpacer();
  addButton(wxID_CANCEL, "Cancel");
  if (several) addButton(wxID_YESTOALL, "Save &all");
  auto* save = addButton(wxID_YES, "&Save");
  save->SetDefault();
  save->SetFocus();

  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(words, 1, wxEXPAND | wxALL, 2 * gap);
  all->Add(buttons, 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, 2 * gap);
  dialog.SetEscapeId(wxID_CANCEL);
  dialog.SetSizerAndFit(all);
  dialog.SetSize(dialog.FromDIP(wxSize(420, -1)).x, dialog.GetSize().y);
  dialog.CentreOnParent();
  switch (dialog.ShowModal()) {
    case wxID_YES:
      return SaveAnswer::save;
    case wxID_YESTOALL:
      return SaveAnswer::saveAll;
    case wxID_NO:
      return SaveAnswer::discard;
    default:
      return SaveAnswer::cancel;
  }
}

}  // namespace plumetta
