// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/dialog.h>
#include <wx/sizer.h>
#include <wx/slider.h>
#include <wx/stattext.h>
#include <wx/timer.h>

#include <functional>
#include <optional>
#include <string>

#include "app/application.h"
#include "app/plugin_library.h"
#include "ui/rack_lists.h"
#include "ui/vst_editor_window.h"
#include "ui/window_profile.h"

namespace plumetta {

// The rack beside the documents: its positions, and programs and parameters of the selected one. Closing
// hides it and closes the editors; the plug-ins stay.
class CVSTRackDlg : public wxDialog {
 public:
  // `mayChange` is asked before anything of the rack is changed.
  CVSTRackDlg(wxWindow* parent, Application& app, WindowProfile& profile, PluginEditors& editors,
              std::function<bool()> mayChange);
  ~CVSTRackDlg() override;

  // The switch for playing through the rack was used here.
  std::function<void()> onSwitched;
  // Keys that are none of this window's.
  std::function<void()> onPlayKey;
  // The plug-ins are wanted over the samples of the document.
  std::function<void()> onApply;

  bool Show(bool show = true) override;
  void storePlace();

 private:
  wxSizer* makeLeft();
  wxSizer* makeRight();
  wxSizer* makeBottom();
  wxButton* addButton(wxSizer& row, const char* label, const char* hint, void (CVSTRackDlg::*run)());
  void restorePlace();

  void add();
  void addFile();
  void replace();
  // Asks first where the position is occupied.
  void place(int position, const std::string& path);
  void addAtFirstFree(const std::string& path);
  void remove();
  void moveUp() { move(-1); }
  void moveDown() { move(1); }
  void move(int by);
  void toggleMute();
  void showEditor();
  void activate();
  void clear();
  void apply();
  void loadChain();
  void saveChain();
  void loadPreset() { loadPrograms(ProgramFileKind::program); }
  void savePreset() { savePrograms(ProgramFileKind::program); }
  void loadBank() { loadPrograms(ProgramFileKind::bank); }
  void saveBank() { savePrograms(ProgramFileKind::bank); }
  void loadPrograms(ProgramFileKind kind);
  void savePrograms(ProgramFileKind kind);
  std::optional<std::string> askFile(const wxString& title, const char* filter, const std::string& folder,
                                     const char* extension, bool save);
  // Of a file, for the next time.
  void keepFolder(std::string& setting, const std::string& path);

  int selected() const { return positions_->GetSelection(); }
  void select(int position);
  void chooseProgram();
  void moveParameter();
  void showPosition();
  void showParameter();
  void showChain();
  wxString pinText() const;
  wxString latencyText() const;
  void onTimer();
  void onListKey(wxKeyEvent& event);

  Application& app_;
  Rack& rack_;
  WindowProfile& profile_;
  PluginEditors& editors_;
  std::function<bool()> mayChange_;
  PositionList* positions_;
  ProgramTable* programs_ = nullptr;
  ParameterTable* parameters_ = nullptr;
  wxCheckBox* switch_ = nullptr;
  wxSlider* slider_ = nullptr;
  wxStaticText* value_ = nullptr;
  wxStaticText* facts_ = nullptr;
  wxButton *remove_ = nullptr, *mute_ = nullptr, *editor_ = nullptr, *up_ = nullptr, *down_ = nullptr;
  wxButton *clear_ = nullptr, *saveChain_ = nullptr, *apply_ = nullptr;
  wxButton *loadPreset_ = nullptr, *savePreset_ = nullptr, *loadBank_ = nullptr, *saveBank_ = nullptr;
  wxTimer timer_;
};

}  // namespace plumetta
