// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/aui/aui.h>

#include "ui/theme.h"

namespace plumetta {

// Panes with a quiet caption and thin sashes, in the colours of the editor's own views.
class FlatDockArt : public wxAuiDefaultDockArt {
 public:
  explicit FlatDockArt(const wxWindow& window);

  wxAuiDockArt* Clone() override { return new FlatDockArt(*this); }
  void UpdateColoursFromSystem() override;
  void DrawCaption(wxDC& dc, wxWindow* window, const wxString& text, const wxRect& rect,
                   wxAuiPaneInfo& pane) override;
  void DrawPaneButton(wxDC& dc, wxWindow* window, int button, int buttonState, const wxRect& rect,
                      wxAuiPaneInfo& pane) override;

 private:
  void adoptTheme();

  Theme theme_ = Theme::current();
};

}  // namespace plumetta
