// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/dialog.h>
#include <wx/slider.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <array>

#include "app/application.h"
#include "app/skin.h"
#include "ui/window_profile.h"

namespace plumetta {

// Where dialogs of skins keep their folder, and what files they show.
inline constexpr const char* kSkinSection = "Skin";
inline constexpr const char* kSkinFolder = "Folder";
inline constexpr const char* kSkinFilter = "Skins (*.skin)|*.skin|All files|*";

class TintList;

// Edits the colours one by one, seen at once in every window. They become the person's own with OK; without
// it all is as it was.
class SkinDialog : public wxDialog {
 public:
  SkinDialog(wxWindow* parent, Application& app, WindowProfile& profile);

  // True when OK has stored the colours. `replaces` asks first, as others are stored already.
  bool ask(bool replaces);

 private:
  wxSizer* makeParts();
  wxSizer* makeButtons();
  Tint selected() const;
  Palette palette() const;
  void showSelected();
  wxString remark(Tint tint) const;
  void give(std::optional<Rgb> colour);
  void onHex();
  void choose();
  void saveAs();
  // False, after a message, when the file can't be written.
  bool write(const std::string& path);

  Application& app_;
  WindowProfile& profile_;
  const Skin before_;
  Skin skin_;
  TintList* list_;
  std::array<wxSlider*, 3> parts_{};
  wxTextCtrl* hex_ = nullptr;
  wxStaticText* remark_ = nullptr;
};

}  // namespace plumetta
