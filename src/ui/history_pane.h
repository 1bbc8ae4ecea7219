// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/panel.h>

#include <functional>

#include "doc/document.h"

namespace plumetta {

class StepList;

// What has been done to a document, step by step; the steps that were undone are grey. Choosing one goes
// there.
class HistoryPane : public wxPanel {
 public:
  explicit HistoryPane(wxWindow* parent);

  // Shows a document's steps as they stand. Null for none.
  void show(const CPlumettaDoc* doc);
  // The same, if anything has changed since. Cheap when nothing has.
  void follow(const CPlumettaDoc* doc);

  // How many steps shall be done once the document is as it was then.
  std::function<void(size_t)> onChosen;

 private:
  StepList* list_;
  const CPlumettaDoc* shown_ = nullptr;  // compared, never looked into
  uint64_t revision_ = 0;
};

}  // namespace plumetta
