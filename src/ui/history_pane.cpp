// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history_pane.h"

#include <wx/dc.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/vlbox.h>

#include "ui/text.h"
#include "ui/theme.h"

namespace plumetta {
namespace {

constexpr int kRowPadding = 4;
constexpr int kTextLeft = 12;
constexpr int kMarkWidth = 3;

}  // namespace

// The rows: the file as it was opened, then its steps.
class StepList : public wxVListBox {
 public:
  explicit StepList(wxWindow* parent)
      : wxVListBox(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_NONE) {
    adoptTheme();
    Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
      adoptTheme();
      event.Skip();
    });
    Bind(wxEVT_MOTION, [this](wxMouseEvent& event) {
      showWhole(VirtualHitTest(event.GetY()));
      event.Skip();
    });
  }

  void setSteps(wxArrayString names, size_t done) {
    names_ = std::move(names);
    done_ = done;
    SetItemCount(names_.size());
    SetSelection(names_.empty() ? wxNOT_FOUND : static_cast<int>(done));
    Refresh();
  }
  size_t done() const { return done_; }

 private:
  void adoptTheme() {
    theme_ = Theme::current();
    SetBackgroundColour(theme_.margin);
    Refresh();
  }

  // A name that is cut off stands whole in a tooltip.
  void showWhole(int row) {
    const wxString text = row >= 0 ? names_[static_cast<size_t>(row)] : wxString();
    const bool cut = GetTextExtent(text).x > GetClientSize().x - FromDIP(kTextLeft);
    if (cut && GetToolTipText() != text) SetToolTip(text);
    if (!cut && GetToolTip() != nullptr) UnsetToolTip();
  }

  wxCoord OnMeasureItem(size_t) const override { return GetCharHeight() + 2 * FromDIP(kRowPadding); }

  void OnDrawBackground(wxDC& dc, const wxRect& rect, size_t row) const override {
    if (row != done_) return;
    dc.SetPen(*wxTRANSPARENT_PEN);
    dc.SetBrush(theme_.laneSelected);
    dc.DrawRectangle(rect);
  }

  void OnDrawItem(wxDC& dc, const wxRect& rect, size_t row) const override {
    const int left = rect.x + FromDIP(kTextLeft);
    if (row == done_) {
      dc.SetPen(*wxTRANSPARENT_PEN);
      dc.SetBrush(theme_.accent);
      dc.DrawRectangle(rect.x, rect.y, FromDIP(kMarkWidth), rect.height);
    }
    dc.SetFont(GetFont());
    dc.SetTextForeground(row <= done_ ? theme_.text : theme_.textQuiet);
    const int room = rect.GetRight() - left - FromDIP(kRowPadding);
    dc.DrawText(wxControl::Ellipsize(names_[row], dc, wxELLIPSIZE_END, room), left,
                rect.y + FromDIP(kRowPadding));
  }

  Theme theme_ = Theme::current();
  wxArrayString names_;
  size_t done_ = 0;
};

HistoryPane::HistoryPane(wxWindow* parent) : wxPanel(parent), list_(new StepList(this)) {
  auto* heading = new wxStaticText(this, wxID_ANY, "History");
  heading->SetFont(GetFont().Bold());
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(heading, 0, wxEXPAND | wxALL, FromDIP(8));
  all->Add(list_, 1, wxEXPAND);
  SetSizer(all);
  const auto adoptTheme = [this, heading] {
    const Theme theme = Theme::current();
    SetBackgroundColour(theme.margin);
    heading->SetForegroundColour(theme.textQuiet);
    Refresh();
  };
  adoptTheme();
  Bind(wxEVT_SYS_COLOUR_CHANGED, [adoptTheme](wxSysColourChangedEvent& event) {
    adoptTheme();
    event.Skip();
  });
  list_->Bind(wxEVT_LISTBOX, [this](wxCommandEvent& event) {
    const int row = event.GetSelection();
    if (row >= 0 && static_cast<size_t>(row) != list_->done() && onChosen) onChosen(static_cast<size_t>(row));
  });
}

void HistoryPane::follow(const CPlumettaDoc* doc) {
  if (doc != shown_ || (doc != nullptr && doc->journal().revision() != revision_)) show(doc);
}

void HistoryPane::show(const CPlumettaDoc* doc) {
  shown_ = doc;
  wxArrayString names;
  if (doc != nullptr) {
    revision_ = doc->journal().revision();
    names.Add("Opened");
    for (const std::string& name : doc->journal().stepNames()) {
      names.Add(name.empty() ? wxString("Change") : toWx(name));
    }
  }
  list_->setSteps(names, doc != nullptr ? doc->journal().undoCount() : 0);
}

}  // namespace plumetta
