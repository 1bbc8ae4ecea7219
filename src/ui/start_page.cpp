// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/start_page.h"

#include <wx/button.h>
#include <wx/dcbuffer.h>
#include <wx/settings.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include "platform/paths.h"
#include "ui/text.h"
#include "ui/toolbar_icons.h"

namespace plumetta {
namespace {

constexpr int kRowWidth = 480;
constexpr int kRowPadding = 8;

wxColour systemColour(wxSystemColour which) { return wxSystemSettings::GetColour(which); }

wxColour mixed(const wxColour& a, const wxColour& b, double partOfB) {
  const auto mix = [&](int x, int y) { return static_cast<unsigned char>(x + (y - x) * partOfB); };
  return {mix(a.Red(), b.Red()), mix(a.Green(), b.Green()), mix(a.Blue(), b.Blue())};
}

wxColour paper() { return systemColour(wxSYS_COLOUR_WINDOW); }
wxColour ink() { return systemColour(wxSYS_COLOUR_WINDOWTEXT); }
wxColour quietInk() { return mixed(ink(), paper(), 0.4); }

// A recent file: its name, and its folder in a quieter colour. Chosen by click, or by Enter when it has the
// focus.
class RecentRow : public wxWindow {
 public:
  RecentRow(wxWindow* parent, const std::string& path, std::function<void()> onChosen)
      : wxWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxWANTS_CHARS | wxBORDER_NONE),
        name_(toWx(fileNameOf(path))),
        folder_(toWx(folderOf(path))),
        onChosen_(std::move(onChosen)) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    SetMinSize(wxSize(FromDIP(kRowWidth), GetCharHeight() + FromDIP(12)));
    SetCursor(wxCursor(wxCURSOR_HAND));
    SetToolTip(toWx(path));
    Bind(wxEVT_PAINT, &RecentRow::onPaint, this);
    Bind(wxEVT_ENTER_WINDOW, [this](wxMouseEvent&) { setHot(true); });
    Bind(wxEVT_LEAVE_WINDOW, [this](wxMouseEvent&) { setHot(false); });
    Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
      Refresh();
      event.Skip();
    });
    Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
      Refresh();
      event.Skip();
    });
    Bind(wxEVT_LEFT_UP, [this](wxMouseEvent&) { choose(); });
    Bind(wxEVT_KEY_DOWN, &RecentRow::onKey, this);
  }

 private:
  void setHot(bool hot) {
    hot_ = hot;
    Refresh();
  }
  // Choosing usually removes this row, so not from inside its own event.
  void choose() {
    GetParent()->CallAfter([chosen = onChosen_] { chosen(); });
  }

  void onKey(wxKeyEvent& event) {
    switch (event.GetKeyCode()) {
      case WXK_RETURN:
      case WXK_NUMPAD_ENTER:
      case WXK_SPACE:
        choose();
        break;
      case WXK_TAB:
        Navigate(event.ShiftDown() ? wxNavigationKeyEvent::IsBackward : wxNavigationKeyEvent::IsForward);
        break;
      case WXK_DOWN:
      case WXK_UP:
        Navigate(event.GetKeyCode() == WXK_UP ? wxNavigationKeyEvent::IsBackward
                                              : wxNavigationKeyEvent::IsForward);
        break;
      default:
        event.Skip();
    }
  }

  void onPaint(wxPaintEvent&) {
    wxAutoBufferedPaintDC dc(this);
    const wxSize size = GetClientSize();
    dc.SetPen(*wxTRANSPARENT_PEN);
    dc.SetBrush(paper());
    dc.DrawRectangle(size);
    if (hot_ || HasFocus()) {
      dc.SetBrush(mixed(paper(), systemColour(wxSYS_COLOUR_HIGHLIGHT), hot_ ? 0.18 : 0.10));
      dc.DrawRoundedRectangle(wxPoint(0, 0), size, FromDIP(4));
    }
    dc.SetFont(GetFont());
    const int x = FromDIP(kRowPadding);
    const int y = (size.y - dc.GetCharHeight()) / 2;
    const int nameRoom = size.x * 3 / 5 - x;
    const wxString name = wxControl::Ellipsize(name_, dc, wxELLIPSIZE_MIDDLE, nameRoom);
    dc.SetTextForeground(ink());
    dc.DrawText(name, x, y);
    const int folderX = x + dc.GetTextExtent(name).x + FromDIP(16);
    dc.SetTextForeground(quietInk());
    dc.DrawText(wxControl::Ellipsize(folder_, dc, wxELLIPSIZE_START, size.x - folderX - x), folderX, y);
  }

  wxString name_, folder_;
  std::function<void()> onChosen_;
  bool hot_ = false;
};

}  // namespace

StartPage::StartPage(wxWindow* parent) : wxScrolled<wxPanel>(parent) {
  SetScrollRate(0, FromDIP(8));
  auto* column = new wxBoxSizer(wxVERTICAL);
  column->Add(makeHeading(), 0, wxLEFT, FromDIP(kRowPadding));
  column->AddSpacer(FromDIP(24));
  column->Add(makeButtons(), 0, wxLEFT, FromDIP(kRowPadding));
  column->AddSpacer(FromDIP(32));
  auto* heading = new wxStaticText(this, wxID_ANY, "Recent files");
  heading->SetFont(GetFont().Bold());
  recentHeading_ = heading;
  recentRows_ = new wxBoxSizer(wxVERTICAL);
  column->Add(heading, 0, wxLEFT, FromDIP(kRowPadding));
  column->Add(recentRows_, 0, wxTOP, FromDIP(8));

  // A little above the middle, where a page looks centred.
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->AddStretchSpacer(2);
  all->Add(column, 0, wxALIGN_CENTRE_HORIZONTAL | wxLEFT | wxRIGHT, FromDIP(24));
  all->AddStretchSpacer(3);
  SetSizer(all);
  applyColours();
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    applyColours();
    event.Skip();
  });
}

wxSizer* StartPage::makeHeading() {
  auto* mark = new wxStaticBitmap(this, wxID_ANY, programMark(wxSize(56, 56)));
  auto* name = new wxStaticText(this, wxID_ANY, "Plumetta");
  name->SetFont(GetFont().Scaled(2.0f));
  auto* hint = new wxStaticText(this, wxID_ANY, "Drop audio files here, or begin with one of these.");
  hint->SetName("quiet");
  auto* words = new wxBoxSizer(wxVERTICAL);
  words->Add(name);
  words->Add(hint, 0, wxTOP, FromDIP(2));
  auto* heading = new wxBoxSizer(wxHORIZONTAL);
  heading->Add(mark, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(16));
  heading->Add(words, 0, wxALIGN_CENTRE_VERTICAL);
  return heading;
}

wxSizer* StartPage::makeButtons() {
  auto* buttons = new wxBoxSizer(wxHORIZONTAL);
  auto* open = new wxButton(this, wxID_ANY, toWx("Open…"));
  auto* create = new wxButton(this, wxID_ANY, toWx("New…"));
  open->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { onOpen(); });
  create->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { onNew(); });
  for (wxButton* button : {open, create}) {
    button->SetMinSize(FromDIP(wxSize(112, -1)));
    buttons->Add(button, 0, wxRIGHT, FromDIP(8));
  }
  return buttons;
}

void StartPage::setRecent(const std::vector<std::string>& paths) {
  recentRows_->Clear(true);
  for (const std::string& path : paths) {
    recentRows_->Add(new RecentRow(this, path, [this, path] { onRecent(path); }));
  }
  recentHeading_->Show(!paths.empty());
  FitInside();
  Layout();
}

void StartPage::applyColours() {
  SetBackgroundColour(paper());
  for (wxWindow* child : GetChildren()) {
    if (auto* text = wxDynamicCast(child, wxStaticText)) {
      text->SetForegroundColour(text->GetName() == "quiet" ? quietInk() : ink());
    }
  }
  Refresh();
}

}  // namespace plumetta
