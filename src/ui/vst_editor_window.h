// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/dialog.h>
#include <wx/panel.h>
#include <wx/timer.h>

#include <array>

#include "vst/rack.h"

namespace plumetta {

// The window of one plug-in's editor, as large as the plug-in says. Closing hides it; the editor stays open.
class CVSTDlg : public wxDialog {
 public:
  CVSTDlg(wxWindow* parent, VstHost& host, int slot);

  // Shows the window and opens the editor in it. False when the plug-in doesn't, or can't here.
  bool openEditor();
  void bringToFront();

 private:
  void takeSize();
  void place();

  VstHost& host_;
  const int slot_;
  wxPanel* area_;
};

// The windows of all editors: they come and go with the rack's wishes, and are kept drawn. UI thread.
class PluginEditors {
 public:
  PluginEditors(wxWindow& parent, Rack& rack);
  // Closes every editor.
  ~PluginEditors();
  PluginEditors(const PluginEditors&) = delete;
  PluginEditors& operator=(const PluginEditors&) = delete;

  // Shows the editor of a position in front of all. False when there is none to show.
  bool show(int position);
  // From now on the windows that are there bear the plug-ins' names, and no longer their paths.
  void titleByName();

 private:
  void open(int position);
  void setPace(int milliseconds);
  void idle();

  wxWindow& parent_;
  Rack& rack_;
  std::array<CVSTDlg*, VstHost::kSlots> windows_{};  // by slot
  wxTimer timer_;
  bool idling_ = false;
};

}  // namespace plumetta
