// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/window.h>

#include <functional>
#include <vector>

namespace plumetta {

// Tab and F6 lead round the parts of a window that take keys, with Shift the other way. The toolkit's own
// round would pass through tabs and scroll bars, which don't show that they have the keys.
class FocusRound {
 public:
  // `parts`: those that can be seen now, in their order. The window must outlive this.
  FocusRound(wxWindow& window, std::function<std::vector<wxWindow*>()> parts);

 private:
  bool step(const wxKeyEvent& event) const;

  std::function<std::vector<wxWindow*>()> parts_;
};

}  // namespace plumetta
