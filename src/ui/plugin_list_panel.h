// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/button.h>
#include <wx/panel.h>
#include <wx/srchctrl.h>
#include <wx/stattext.h>
#include <wx/timer.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/plugin_library.h"
#include "ui/window_profile.h"

namespace plumetta {

class PluginTable;

// A row of the list of plug-ins: one that was found, or one that scans leave out.
struct PluginRow {
  PluginDescription plugin;
  std::string skipped;  // why it is left out; empty for one that was found
};

// The plug-ins that scans have found, filtered by what is typed, and the scan itself. Embedded in a window or
// in the dialog below.
class PluginListPanel : public wxPanel {
 public:
  PluginListPanel(wxWindow* parent, Application& app, WindowProfile& profile);

  // Reads the list again.
  void reload();
  // The library that is selected; nothing when there is none, or one that scans leave out.
  std::optional<std::string> selected() const;
  bool listIsEmpty() const { return listed_ == 0; }
  // Moves the selection, with its keys, while the filter has the focus.
  void focusFilter();

  // A library was chosen, with a double click or Enter.
  std::function<void(const std::string& path)> onChosen;
  std::function<void()> onSelection;

 private:
  wxSizer* makeTop();
  wxSizer* makeBottom();
  void applyFilter();
  void selectionChanged();
  void activate();
  void onFilterKey(wxKeyEvent& event);
  void configureScan();
  void tryAgain();
  void begin(ScanOptions options);
  void onTimer();
  void finish();
  void updateButtons();

  Application& app_;
  WindowProfile& profile_;
  std::vector<PluginRow> rows_;
  size_t listed_ = 0;
  wxSearchCtrl* filter_;
  PluginTable* table_;
  wxStaticText* status_;
  wxButton* scanButton_;
  wxButton* stopButton_;
  wxButton* againButton_;
  wxTimer timer_;
  std::unique_ptr<PluginScan> scan_;
};

// Asks for a plug-in of the list; nothing when the person cancelled.
std::optional<std::string> pickPlugin(wxWindow* parent, Application& app, WindowProfile& profile);

}  // namespace plumetta
