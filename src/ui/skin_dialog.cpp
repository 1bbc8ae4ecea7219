// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/skin_dialog.h"

#include <wx/button.h>
#include <wx/colordlg.h>
#include <wx/dc.h>
#include <wx/filedlg.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/vlbox.h>

#include "app/skin_files.h"
#include "platform/paths.h"
#include "ui/text.h"
#include "ui/theme.h"

namespace plumetta {
namespace {

constexpr int kGap = 8;
constexpr int kRowPadding = 4;
constexpr int kSwatch = 36;
constexpr const char* kParts[] = {"&Red:", "&Green:", "&Blue:"};
constexpr int kRemarkWidth = 260;

}  // namespace

// A line for each colour: a patch of it and what it stands for.
class TintList : public wxVListBox {
 public:
  TintList(wxWindow* parent, const Skin& skin)
      : wxVListBox(parent, wxID_ANY, wxDefaultPosition, parent->FromDIP(wxSize(280, 380)), wxBORDER_THEME),
        skin_(skin) {
    SetName("Colours");
    SetItemCount(kTints);
    SetSelection(0);
  }

 private:
  wxCoord OnMeasureItem(size_t) const override { return GetCharHeight() + 2 * FromDIP(kRowPadding); }

  void OnDrawItem(wxDC& dc, const wxRect& rect, size_t row) const override {
    const auto tint = static_cast<Tint>(row);
    const int padding = FromDIP(kRowPadding);
    dc.SetPen(wxPen(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT)));
    dc.SetBrush(toWx(Palette(skin_, systemIsDark())[tint]));
    dc.DrawRectangle(rect.x + padding, rect.y + padding / 2, FromDIP(kSwatch), rect.height - padding);
    dc.SetFont(GetFont());
    dc.SetTextForeground(
        wxSystemSettings::GetColour(IsSelected(row) ? wxSYS_COLOUR_HIGHLIGHTTEXT : wxSYS_COLOUR_LISTBOXTEXT));
    dc.DrawText(toWx(tintRow(tint).meaning), rect.x + FromDIP(kSwatch) + 3 * padding, rect.y + padding);
  }

  const Skin& skin_;
};

SkinDialog::SkinDialog(wxWindow* parent, Application& app, WindowProfile& profile)
    : wxDialog(parent, wxID_ANY, "Colours", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      app_(app),
      profile_(profile),
      before_(wornSkin()),
      skin_(before_),
      list_(new TintList(this, skin_)) {
  auto* columns = new wxBoxSizer(wxHORIZONTAL);
  columns->Add(list_, 1, wxEXPAND | wxRIGHT, FromDIP(2 * kGap));
  columns->Add(makeParts(), 0, wxEXPAND);
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(columns, 1, wxEXPAND | wxALL, FromDIP(2 * kGap));
  all->Add(makeButtons(), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(2 * kGap));
  SetSizerAndFit(all);
  list_->Bind(wxEVT_LISTBOX, [this](wxCommandEvent&) { showSelected(); });
  CentreOnParent();
  showSelected();
  list_->SetFocus();
}

wxSizer* SkinDialog::makeParts() {
  auto* column = new wxBoxSizer(wxVERTICAL);
  auto* grid = new wxFlexGridSizer(2, FromDIP(wxSize(kGap, kGap)));
  grid->AddGrowableCol(1);
  for (size_t i = 0; i < parts_.size(); ++i) {
    grid->Add(new wxStaticText(this, wxID_ANY, kParts[i]), 0, wxALIGN_CENTRE_VERTICAL);
    parts_[i] = new wxSlider(this, wxID_ANY, 0, 0, 255, wxDefaultPosition, FromDIP(wxSize(220, -1)));
    parts_[i]->Bind(wxEVT_SLIDER, [this](wxCommandEvent&) {
      const auto part = [this](size_t at) { return static_cast<uint8_t>(parts_[at]->GetValue()); };
      give(Rgb{part(0), part(1), part(2)});
    });
    grid->Add(parts_[i], 1, wxEXPAND);
  }
  grid->Add(new wxStaticText(this, wxID_ANY, "&Code:"), 0, wxALIGN_CENTRE_VERTICAL);
  hex_ = new wxTextCtrl(this, wxID_ANY);
  hex_->SetToolTip("#RRGGBB, or red, green and blue from 0 to 255 with commas");
  hex_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { onHex(); });
  grid->Add(hex_, 1, wxEXPAND);
  column->Add(grid, 0, wxEXPAND);
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  auto* pick = new wxButton(this, wxID_ANY, "C&hoose…");
  pick->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { choose(); });
  auto* plain = new wxButton(this, wxID_ANY, "&Default colour");
  plain->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { give(std::nullopt); });
  row->Add(pick, 1, wxRIGHT, FromDIP(kGap));
  row->Add(plain, 1);
  column->Add(row, 0, wxEXPAND | wxTOP, FromDIP(kGap));
  remark_ = new wxStaticText(this, wxID_ANY, wxString());
  remark_->SetMinSize(FromDIP(wxSize(kRemarkWidth, -1)));
  column->Add(remark_, 1, wxEXPAND | wxTOP, FromDIP(2 * kGap));
  return column;
}

wxSizer* SkinDialog::makeButtons() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  auto* all = new wxButton(this, wxID_ANY, "Reset &all");
  all->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
    skin_ = {};
    give(std::nullopt);
  });
  auto* save = new wxButton(this, wxID_ANY, "&Save as…");
  save->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { saveAs(); });
  row->Add(all, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  row->Add(save, 0, wxALIGN_CENTRE_VERTICAL);
  row->AddStretchSpacer();
  row->Add(CreateButtonSizer(wxOK | wxCANCEL), 0, wxALIGN_CENTRE_VERTICAL | wxLEFT, FromDIP(2 * kGap));
  return row;
}

bool SkinDialog::ask(bool replaces) {
  const std::string own = ownSkinPath(app_.homeFolder());
  while (ShowModal() == wxID_OK) {
    const bool may =
        !replaces || app_.prompter().question("There are other colours of your own already. Replace them?");
    if (may && write(own)) return true;
  }
  wearSkin(before_);
  return false;
}

Tint SkinDialog::selected() const { return static_cast<Tint>(std::max(list_->GetSelection(), 0)); }

Palette SkinDialog::palette() const { return Palette(skin_, systemIsDark()); }

void SkinDialog::showSelected() {
  const Palette colours = palette();
  const Tint tint = selected();
  const Rgb colour = colours[tint];
  const uint8_t values[] = {colour.red, colour.green, colour.blue};
  for (size_t i = 0; i < parts_.size(); ++i) parts_[i]->SetValue(values[i]);
  if (parseColour(fromWx(hex_->GetValue())) != colour) hex_->ChangeValue(toWx(colourText(colour)));
  remark_->SetLabelText(remark(tint));
  remark_->Wrap(FromDIP(kRemarkWidth));
}

wxString SkinDialog::remark(Tint tint) const {
  const Palette colours = palette();
  const TintRow& row = tintRow(tint);
  wxString text;
  if (row.isText) {
    text.Printf("Contrast to what is behind it: %.1f", contrast(colours[tint], colours[row.ground]));
  }
  for (const Tint bad : unreadableTints(skin_, systemIsDark())) {
    text += "\n\"" + toWx(tintRow(bad).meaning) + "\" can hardly be read.";
  }
  return text;
}

void SkinDialog::give(std::optional<Rgb> colour) {
  skin_[selected()] = colour;
  showSelected();
  list_->Refresh();
  wearSkin(skin_);
}

void SkinDialog::onHex() {
  if (const auto colour = parseColour(fromWx(hex_->GetValue().Trim().Trim(false)))) give(colour);
}

void SkinDialog::choose() {
  wxColourData data;
  data.SetChooseFull(true);
  data.SetColour(toWx(palette()[selected()]));
  wxColourDialog dialog(this, &data);
  if (dialog.ShowModal() == wxID_OK) give(rgbOf(dialog.GetColourData().GetColour()));
}

void SkinDialog::saveAs() {
  wxFileDialog dialog(this, "Save skin", toWx(profile_.text(kSkinSection, kSkinFolder, app_.homeFolder())),
                      "My colours.skin", toWx(kSkinFilter), wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  if (dialog.ShowModal() != wxID_OK) return;
  std::string path = fromWx(dialog.GetPath());
  if (extensionOf(path).empty()) {
    path += std::string(".") + kSkinExtension;
    const bool there = app_.files().kind(path) != FileKind::missing;
    if (there && !app_.prompter().question(path + " is there already. Replace its colours?")) return;
  }
  profile_.setText(kSkinSection, kSkinFolder, folderOf(path));
  write(path);
}

bool SkinDialog::write(const std::string& path) {
  if (!app_.files().makeFolders(folderOf(path)) && writeSkin(path, palette())) return true;
  app_.prompter().message("Unable to write " + path);
  return false;
}

}  // namespace plumetta
