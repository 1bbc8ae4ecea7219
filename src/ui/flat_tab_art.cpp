// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/flat_tab_art.h"

#include <wx/aui/auibook.h>
#include <wx/control.h>
#include <wx/dc.h>
#include <wx/settings.h>

namespace plumetta {
namespace {

constexpr int kPadding = 12;  // beside the caption
constexpr int kRise = 8;      // above and below the caption
constexpr int kWidestText = 240;
constexpr int kCloseSide = 18;  // of the square that takes the click
constexpr int kLine = 2;        // over the tab in front
constexpr double kQuiet = 0.6;  // of the text's colour, on the tabs behind

// The tabs behind stand on the system's ground, whatever the skin.
wxColour textBehind() {
  const wxColour text = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT);
  const wxColour ground = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNFACE);
  const auto mixed = [](unsigned char over, unsigned char under) {
    return wxColour::AlphaBlend(over, under, kQuiet);
  };
  return {mixed(text.Red(), ground.Red()), mixed(text.Green(), ground.Green()),
          mixed(text.Blue(), ground.Blue())};
}

// Of a long name the beginning and the end; the tooltip has it whole.
wxString shownCaption(const wxString& caption, const wxDC& dc, const wxWindow& window) {
  return wxControl::Ellipsize(caption, dc, wxELLIPSIZE_MIDDLE, window.FromDIP(kWidestText));
}

}  // namespace

FlatTabArt::FlatTabArt() : theme_(Theme::current()) {}

void FlatTabArt::UpdateColoursFromSystem() {
  wxAuiGenericTabArt::UpdateColoursFromSystem();
  theme_ = Theme::current();
}

wxSize FlatTabArt::GetTabSize(wxDC& dc, wxWindow* window, const wxString& caption, const wxBitmapBundle&,
                              bool, int closeButtonState, int* xExtent) {
  dc.SetFont(m_normalFont);
  const wxSize text = dc.GetTextExtent(shownCaption(caption, dc, *window));
  // The place of the mark of changes is kept free, so that tabs don't move when it comes.
  int width = text.x + window->FromDIP(2 * kPadding);
  if (!caption.StartsWith("*")) width += dc.GetTextExtent("*").x;
  if (closeButtonState != wxAUI_BUTTON_STATE_HIDDEN) width += window->FromDIP(kCloseSide);
  *xExtent = width;
  return {width, dc.GetCharHeight() + window->FromDIP(2 * kRise)};
}

int FlatTabArt::GetBestTabCtrlSize(wxWindow* window, const wxAuiNotebookPageArray&, const wxSize&) {
  return window->GetTextExtent("Xg").y + window->FromDIP(2 * kRise);
}

void FlatTabArt::DrawBackground(wxDC& dc, wxWindow*, const wxRect& rect) {
  dc.SetPen(*wxTRANSPARENT_PEN);
  dc.SetBrush(wxSystemSettings::GetColour(wxSYS_COLOUR_BTNFACE));
  dc.DrawRectangle(rect);
  dc.SetPen(theme_.line);
  dc.DrawLine(rect.GetLeft(), rect.GetBottom(), rect.GetRight() + 1, rect.GetBottom());
}

void FlatTabArt::DrawTab(wxDC& dc, wxWindow* window, const wxAuiNotebookPage& page, const wxRect& inRect,
                         int closeButtonState, wxRect* outTabRect, wxRect* outButtonRect, int* xExtent) {
  const wxSize size =
      GetTabSize(dc, window, page.caption, page.bitmap, page.active, closeButtonState, xExtent);
  wxRect tab(inRect.x, inRect.y, size.x, inRect.height);
  if (page.active) {
    dc.SetPen(*wxTRANSPARENT_PEN);
    dc.SetBrush(theme_.margin);
    dc.DrawRectangle(tab);
    dc.SetBrush(theme_.accent);
    dc.DrawRectangle(tab.x, tab.y, tab.width, window->FromDIP(kLine));
  }
  dc.SetPen(theme_.line);
  dc.DrawLine(tab.GetRight(), tab.y, tab.GetRight(), tab.GetBottom() + 1);

  const int closeSide = window->FromDIP(kCloseSide);
  *outButtonRect = wxRect();
  if (closeButtonState != wxAUI_BUTTON_STATE_HIDDEN) {
    const int x = tab.GetRight() - closeSide - window->FromDIP(kPadding / 2) + 1;
    *outButtonRect = wxRect(x, tab.y + (tab.height - closeSide) / 2, closeSide, closeSide);
    drawClose(dc, *window, *outButtonRect, closeButtonState, page.active ? theme_.textQuiet : textBehind());
  }
  dc.SetFont(m_normalFont);
  dc.SetTextForeground(page.active ? theme_.text : textBehind());
  dc.DrawText(shownCaption(page.caption, dc, *window), tab.x + window->FromDIP(kPadding),
              tab.y + (tab.height - dc.GetCharHeight()) / 2);
  *outTabRect = tab;
}

void FlatTabArt::drawClose(wxDC& dc, const wxWindow& window, const wxRect& button, int state,
                           const wxColour& colour) const {
  const bool hot = (state & (wxAUI_BUTTON_STATE_HOVER | wxAUI_BUTTON_STATE_PRESSED)) != 0;
  if (hot) {
    dc.SetPen(*wxTRANSPARENT_PEN);
    dc.SetBrush(theme_.line);
    dc.DrawRoundedRectangle(button, window.FromDIP(4));
  }
  const int arm = window.FromDIP(4);
  const wxPoint middle(button.x + button.width / 2, button.y + button.height / 2);
  dc.SetPen(wxPen(hot ? theme_.text : colour, window.FromDIP(1)));
  dc.DrawLine(middle.x - arm, middle.y - arm, middle.x + arm + 1, middle.y + arm + 1);
  dc.DrawLine(middle.x - arm, middle.y + arm, middle.x + arm + 1, middle.y - arm - 1);
}

}  // namespace plumetta
