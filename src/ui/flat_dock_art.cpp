// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/flat_dock_art.h"

#include <wx/control.h>
#include <wx/dc.h>

#include <algorithm>

namespace plumetta {
namespace {

constexpr int kSash = 4;
constexpr int kIndent = 8;
constexpr int kCross = 7;  // side of the close button's drawing

}  // namespace

FlatDockArt::FlatDockArt(const wxWindow& window) {
  wxFont font = window.GetFont();
  font.SetFractionalPointSize(font.GetFractionalPointSize() * 0.82);
  m_captionFont = font;
  int height = 0;
  window.GetTextExtent("Xg", nullptr, &height, nullptr, nullptr, &font);
  SetMetric(wxAUI_DOCKART_CAPTION_SIZE, height + window.FromDIP(2));
  SetMetric(wxAUI_DOCKART_SASH_SIZE, window.FromDIP(kSash));
  SetMetric(wxAUI_DOCKART_PANE_BORDER_SIZE, 0);
  SetMetric(wxAUI_DOCKART_GRADIENT_TYPE, wxAUI_GRADIENT_NONE);
  adoptTheme();
}

void FlatDockArt::UpdateColoursFromSystem() {
  wxAuiDefaultDockArt::UpdateColoursFromSystem();
  adoptTheme();
}

void FlatDockArt::adoptTheme() {
  theme_ = Theme::current();
  SetColour(wxAUI_DOCKART_BACKGROUND_COLOUR, theme_.line);
  SetColour(wxAUI_DOCKART_SASH_COLOUR, theme_.line);
}

void FlatDockArt::DrawCaption(wxDC& dc, wxWindow* window, const wxString& text, const wxRect& rect,
                              wxAuiPaneInfo& pane) {
  dc.SetPen(*wxTRANSPARENT_PEN);
  dc.SetBrush(theme_.margin);
  dc.DrawRectangle(rect);
  const int indent = window->FromDIP(kIndent);
  const int buttons = pane.HasCloseButton() ? GetMetric(wxAUI_DOCKART_PANE_BUTTON_SIZE) : 0;
  dc.SetFont(m_captionFont);
  dc.SetTextForeground(theme_.textQuiet);
  const int room = std::max(rect.width - 2 * indent - buttons, 0);
  const wxString shown = wxControl::Ellipsize(text, dc, wxELLIPSIZE_END, room);
  dc.DrawText(shown, rect.x + indent, rect.y + (rect.height - dc.GetCharHeight()) / 2);
}

// The only button that panes have is the one that closes them.
void FlatDockArt::DrawPaneButton(wxDC& dc, wxWindow* window, int, int buttonState, const wxRect& rect,
                                 wxAuiPaneInfo&) {
  const bool lit = buttonState != wxAUI_BUTTON_STATE_NORMAL;
  const int side = window->FromDIP(kCross);
  const int x = rect.x + (rect.width - side) / 2, y = rect.y + (rect.height - side) / 2;
  dc.SetPen(wxPen(lit ? theme_.text : theme_.textQuiet, std::max(window->FromDIP(1), 1)));
  dc.DrawLine(x, y, x + side + 1, y + side + 1);
  dc.DrawLine(x, y + side, x + side + 1, y - 1);
}

}  // namespace plumetta
