// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/focus_round.h"

#include <algorithm>

namespace plumetta {

FocusRound::FocusRound(wxWindow& window, std::function<std::vector<wxWindow*>()> parts)
    : parts_(std::move(parts)) {
  window.Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    if (!step(event)) event.Skip();
  });
}

bool FocusRound::step(const wxKeyEvent& event) const {
  const bool tab = event.GetKeyCode() == WXK_TAB;
  if ((!tab && event.GetKeyCode() != WXK_F6) || event.ControlDown() || event.AltDown()) return false;
  const std::vector<wxWindow*> parts = parts_();
  const wxWindow* const focus = wxWindow::FindFocus();
  const auto now = std::find_if(parts.begin(), parts.end(), [&](const wxWindow* part) {
    return part == focus || part->IsDescendant(const_cast<wxWindow*>(focus));
  });
  // Elsewhere Tab is the toolkit's.
  if (parts.empty() || (tab && now == parts.end())) return false;
  const auto count = static_cast<ptrdiff_t>(parts.size());
  const ptrdiff_t next = now == parts.end() ? 0 : now - parts.begin() + (event.ShiftDown() ? count - 1 : 1);
  parts[static_cast<size_t>(next % count)]->SetFocus();
  return true;
}

}  // namespace plumetta
