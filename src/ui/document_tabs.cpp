// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/document_tabs.h"

#include <algorithm>

#include "platform/paths.h"
#include "ui/flat_tab_art.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr long kStyle = wxAUI_NB_TOP | wxAUI_NB_TAB_SPLIT | wxAUI_NB_TAB_MOVE | wxAUI_NB_SCROLL_BUTTONS |
                        wxAUI_NB_CLOSE_ON_ALL_TABS | wxAUI_NB_MIDDLE_CLICK_CLOSE | wxBORDER_NONE;

}  // namespace

bool isNamed(const CPlumettaDoc& doc) {
  const std::string& path = doc.wave().fileName();
  return absolutePath(path) == path;
}

wxString markedTitle(const CPlumettaDoc& doc) {
  const wxString title = toWx(doc.title());
  return doc.modified() ? "*" + title : title;
}

DocumentTabs::DocumentTabs(wxWindow* parent, DisplaySettings& settings)
    : wxAuiNotebook(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, kStyle), settings_(settings) {
  SetArtProvider(new FlatTabArt);
  followSettings();
  Bind(wxEVT_AUINOTEBOOK_PAGE_CHANGED, [this](wxAuiNotebookEvent& event) {
    if (const Entry* entry = entryAt(event.GetSelection())) entry->panel->SetFocus();
    if (onActivated) onActivated();
    event.Skip();
  });
  Bind(wxEVT_AUINOTEBOOK_PAGE_CLOSE, [this](wxAuiNotebookEvent& event) {
    // The tab goes only once the document may be closed, and not from inside its own event.
    event.Veto();
    const Entry* entry = entryAt(event.GetSelection());
    if (entry == nullptr) return;
    CallAfter([this, doc = entry->doc] {
      if (entryOf(*doc) != nullptr && onCloseWanted) onCloseWanted(*doc);
    });
  });
}

void DocumentTabs::add(CPlumettaDoc& doc) {
  auto* panel = new DocumentPanel(this, doc, settings_);
  panel->onSettingsChanged = [this] {
    if (onSettingsChanged) onSettingsChanged();
  };
  entries_.push_back({&doc, panel});
  panel->onTitleChanged = [this, &doc] {
    if (const Entry* entry = entryOf(doc)) showTitle(*entry);
  };
  panel->onStatusChanged = [this, panel] {
    if (panel == activePanel() && onStatusChanged) onStatusChanged();
  };
  AddPage(panel, markedTitle(doc), true);
  showTitle(entries_.back());
  panel->SetFocus();
}

void DocumentTabs::followSettings() {
  constexpr int kAsTheArtSays = -1;
  SetTabCtrlHeight(settings_.fillWindow ? 0 : kAsTheArtSays);
  for (const Entry& entry : entries_) entry.panel->followSettings();
}

void DocumentTabs::remove(CPlumettaDoc& doc) {
  const Entry* entry = entryOf(doc);
  if (entry == nullptr) return;
  DocumentPanel* panel = entry->panel;
  std::erase_if(entries_, [&](const Entry& own) { return own.doc == &doc; });
  DeletePage(static_cast<size_t>(GetPageIndex(panel)));
  if (onActivated) onActivated();
}

void DocumentTabs::activate(CPlumettaDoc& doc) {
  const Entry* entry = entryOf(doc);
  if (entry == nullptr) return;
  SetSelection(static_cast<size_t>(GetPageIndex(entry->panel)));
  entry->panel->SetFocus();
}

void DocumentTabs::activateNeighbour(int step) {
  const int count = static_cast<int>(GetPageCount());
  if (count > 1) SetSelection(static_cast<size_t>((GetSelection() + step + count) % count));
}

CPlumettaDoc* DocumentTabs::active() const {
  const Entry* entry = entryAt(GetSelection());
  return entry != nullptr ? entry->doc : nullptr;
}

DocumentPanel* DocumentTabs::activePanel() const {
  const Entry* entry = entryAt(GetSelection());
  return entry != nullptr ? entry->panel : nullptr;
}

DocumentPanel* DocumentTabs::panelOf(const PlaybackSource* source) const {
  const auto found = std::ranges::find_if(entries_, [&](const Entry& own) { return own.doc == source; });
  return found != entries_.end() ? found->panel : nullptr;
}

std::vector<CPlumettaDoc*> DocumentTabs::documents() const {
  std::vector<CPlumettaDoc*> all;
  for (size_t page = 0; page < GetPageCount(); ++page) {
    if (const Entry* entry = entryAt(static_cast<int>(page))) all.push_back(entry->doc);
  }
  return all;
}

const DocumentTabs::Entry* DocumentTabs::entryAt(int page) const {
  if (page < 0 || page >= static_cast<int>(GetPageCount())) return nullptr;
  const wxWindow* window = GetPage(static_cast<size_t>(page));
  const auto found = std::ranges::find_if(entries_, [&](const Entry& own) { return own.panel == window; });
  return found != entries_.end() ? &*found : nullptr;
}

const DocumentTabs::Entry* DocumentTabs::entryOf(const CPlumettaDoc& doc) const {
  const auto found = std::ranges::find_if(entries_, [&](const Entry& own) { return own.doc == &doc; });
  return found != entries_.end() ? &*found : nullptr;
}

void DocumentTabs::showTitle(const Entry& entry) {
  const auto page = static_cast<size_t>(GetPageIndex(entry.panel));
  SetPageText(page, markedTitle(*entry.doc));
  SetPageToolTip(page, isNamed(*entry.doc) ? toWx(entry.doc->wave().fileName()) : wxString("Not saved yet"));
  if (onTitleChanged) onTitleChanged();
}

}  // namespace plumetta
