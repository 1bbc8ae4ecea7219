// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/aui/tabart.h>

#include "ui/theme.h"

namespace plumetta {

// Draws the tabs of documents: flat, in the colours of the views below them, with a line over the one in
// front.
class FlatTabArt : public wxAuiGenericTabArt {
 public:
  FlatTabArt();

  wxAuiTabArt* Clone() override { return new FlatTabArt(*this); }
  void UpdateColoursFromSystem() override;
  void DrawBackground(wxDC& dc, wxWindow* window, const wxRect& rect) override;
  void DrawTab(wxDC& dc, wxWindow* window, const wxAuiNotebookPage& page, const wxRect& inRect,
               int closeButtonState, wxRect* outTabRect, wxRect* outButtonRect, int* xExtent) override;
  wxSize GetTabSize(wxDC& dc, wxWindow* window, const wxString& caption, const wxBitmapBundle& bitmap,
                    bool active, int closeButtonState, int* xExtent) override;
  int GetBestTabCtrlSize(wxWindow* window, const wxAuiNotebookPageArray& pages, const wxSize&) override;
  int GetIndentSize() override { return 0; }
  int GetBorderWidth(wxWindow*) override { return 0; }
  int GetAdditionalBorderSpace(wxWindow*) override { return 0; }

 private:
  void drawClose(wxDC& dc, const wxWindow& window, const wxRect& button, int state,
                 const wxColour& colour) const;

  Theme theme_;
};

}  // namespace plumetta
