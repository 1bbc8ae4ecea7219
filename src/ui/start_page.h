// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/panel.h>
#include <wx/scrolwin.h>
#include <wx/sizer.h>

#include <functional>
#include <string>
#include <vector>

namespace plumetta {

// What the main window shows with no document open: where to begin.
class StartPage : public wxScrolled<wxPanel> {
 public:
  explicit StartPage(wxWindow* parent);

  void setRecent(const std::vector<std::string>& paths);

  std::function<void()> onOpen;
  std::function<void()> onNew;
  std::function<void(const std::string& path)> onRecent;

 private:
  wxSizer* makeHeading();
  wxSizer* makeButtons();
  void applyColours();

  wxWindow* recentHeading_ = nullptr;
  wxBoxSizer* recentRows_ = nullptr;
};

}  // namespace plumetta
