// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/covered_paint.h"

#include <wx/dcclient.h>

namespace plumetta {
namespace {

bool isCovered(const wxRect& area, wxAuiManager& manager) {
  const wxAuiPaneInfoArray& panes = manager.GetAllPanes();
  for (size_t i = 0; i < panes.GetCount(); ++i) {
    const wxAuiPaneInfo& pane = panes.Item(i);
    if (pane.IsShown() && !pane.IsFloating() && pane.window->GetRect().Contains(area)) return true;
  }
  return false;
}

}  // namespace

void skipCoveredPaint(wxAuiManager& panes) {
  panes.Bind(wxEVT_PAINT, [&panes](wxPaintEvent& event) {
    wxWindow* const managed = panes.GetManagedWindow();
    wxRegionIterator part(managed->GetUpdateRegion());
    while (part.HaveRects() && isCovered(part.GetRect(), panes)) ++part;
    if (part.HaveRects()) {
      event.Skip();
    } else {
      wxPaintDC done(managed);  // as every paint event asks for
    }
  });
}

}  // namespace plumetta
