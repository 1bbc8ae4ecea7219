// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/statusbr.h>

#include <array>

namespace plumetta {

// The line at the window's lower edge. Each field has the width that its text needs, those beside the message
// at least that of a usual text, so that they seldom move; the message has the rest. In a narrow window
// the facts of the file and of the output are cut before the positions; what is cut has a tooltip.
class StatusLine : public wxStatusBar {
 public:
  enum Field { kMessage, kSound, kFormat, kLength, kCursor, kSelection, kFields };

  explicit StatusLine(wxWindow* parent);

 protected:
  void DoUpdateStatusText(int field) override;

 private:
  using Widths = std::array<int, kFields>;

  void share();
  int needed(const wxString& text) const;
  Widths cutTo(int room, Widths texts) const;

  Widths usual_{};
  Widths shared_{};  // as they were set last
};

}  // namespace plumetta
