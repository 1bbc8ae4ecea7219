// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/aui/framemanager.h>

#include <functional>
#include <vector>

namespace plumetta {

// Panes that people drag by their captions to another side or place of the window. They never float: a window
// of its own can't be placed, nor told where it is, on every desktop. A frame shows where the pane would go.
class DraggedPanes : public wxAuiManager {
 public:
  explicit DraggedPanes(wxWindow* window);

  // A pane has been dragged to another place; the layout isn't updated yet.
  std::function<void()> onDragged = [] {};

  void ShowHint(const wxRect& onScreen) override;
  void HideHint() override;

 protected:
  bool ProcessDockResult(wxAuiPaneInfo& target, const wxAuiPaneInfo& place) override;

 private:
  void onMotion(wxMouseEvent& event);
  void onLeftUp(wxMouseEvent& event);
  void drop(wxWindow& pane, wxPoint place, wxPoint grip);

  wxWindow* dragged_ = nullptr;  // while the mouse holds it
  std::vector<wxWindow*> frame_;
};

}  // namespace plumetta
