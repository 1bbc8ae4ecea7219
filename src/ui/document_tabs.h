// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/aui/auibook.h>

#include <functional>
#include <vector>

#include "doc/document.h"
#include "ui/document_panel.h"

namespace plumetta {

// The windows of the open documents: tabs that can be moved, put side by side and closed.
class DocumentTabs : public wxAuiNotebook {
 public:
  DocumentTabs(wxWindow* parent, DisplaySettings& settings);

  // Opens a window on a document, in front. The document must live until `remove`.
  void add(CPlumettaDoc& doc);
  void remove(CPlumettaDoc& doc);
  void activate(CPlumettaDoc& doc);
  // +1 for the next window, -1 for the one before, around the ends.
  void activateNeighbour(int step);
  // The document in front; null with none open.
  CPlumettaDoc* active() const;
  DocumentPanel* activePanel() const;
  // The window of a document; null when it has none, or for no document.
  DocumentPanel* panelOf(const PlaybackSource* source) const;
  // In the order of the tabs.
  std::vector<CPlumettaDoc*> documents() const;

  // The settings of the display have changed.
  void followSettings();

  std::function<void()> onSettingsChanged;           // by something in a document's window
  std::function<void()> onActivated;                 // another document stands in front, or none
  std::function<void()> onTitleChanged;              // of any document
  std::function<void()> onStatusChanged;             // of the document in front
  std::function<void(CPlumettaDoc&)> onCloseWanted;  // by its tab

 private:
  struct Entry {
    CPlumettaDoc* doc;
    DocumentPanel* panel;
  };
  const Entry* entryAt(int page) const;
  const Entry* entryOf(const CPlumettaDoc& doc) const;
  void showTitle(const Entry& entry);

  DisplaySettings& settings_;
  std::vector<Entry> entries_;
};

// Whether there is a file that the document came from or was saved to. What was made or pasted has a bare
// name.
bool isNamed(const CPlumettaDoc& doc);
// The title with the mark of unsaved changes.
wxString markedTitle(const CPlumettaDoc& doc);

}  // namespace plumetta
