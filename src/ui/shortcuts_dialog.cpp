// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/shortcuts_dialog.h"

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/sizer.h>

#include "ui/text.h"

namespace plumetta {
namespace {

std::vector<Action> withSubmenus(const std::vector<Action>& actions) {
  std::vector<Action> all;
  for (const Action& action : actions) {
    all.push_back(action);
    for (const Action& own : action.actions) all.push_back(own);
  }
  return all;
}

}  // namespace

void showShortcuts(wxWindow* parent, const std::vector<MenuPlan>& plan) {
  wxDialog dialog(parent, wxID_ANY, "Keyboard shortcuts", wxDefaultPosition, wxDefaultSize,
                  wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER);
  auto* list = new wxListCtrl(&dialog, wxID_ANY, wxDefaultPosition, dialog.FromDIP(wxSize(460, 440)),
                              wxLC_REPORT | wxLC_SINGLE_SEL | wxLC_NO_HEADER);
  list->AppendColumn("Command", wxLIST_FORMAT_LEFT, dialog.FromDIP(260));
  list->AppendColumn("Key", wxLIST_FORMAT_LEFT, dialog.FromDIP(160));
  const wxFont heading = list->GetFont().Bold();
  for (const MenuPlan& menu : plan) {
    bool headed = false;
    for (const Action& action : withSubmenus(menu.actions)) {
      if (action.key.empty()) continue;
      if (!headed) {
        if (list->GetItemCount() > 0) list->InsertItem(list->GetItemCount(), wxString());
        const long row = list->InsertItem(list->GetItemCount(), wxMenuItem::GetLabelText(toWx(menu.title)));
        list->SetItemFont(row, heading);
        headed = true;
      }
      const long row = list->InsertItem(list->GetItemCount(), "    " + toWx(plainText(action)));
      list->SetItem(row, 1, toWx(action.key));
    }
  }
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(list, 1, wxEXPAND | wxALL, dialog.FromDIP(16));
  all->Add(dialog.CreateButtonSizer(wxCLOSE), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, dialog.FromDIP(16));
  dialog.SetEscapeId(wxID_CLOSE);
  dialog.SetAffirmativeId(wxID_CLOSE);
  dialog.SetSizerAndFit(all);
  dialog.CentreOnParent();
  dialog.ShowModal();
}

}  // namespace plumetta
