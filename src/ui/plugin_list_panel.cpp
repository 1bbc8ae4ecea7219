// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/plugin_list_panel.h"

#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/settings.h>
#include <wx/sizer.h>

#include <algorithm>
#include <sstream>

#include "platform/paths.h"
#include "ui/scan_dialog.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kGap = 8;
constexpr int kMargin = 16;
constexpr int kScanMilliseconds = 30;
constexpr const char* kInstrumentMark = "♪ ";
constexpr const char* kSkippedMark = "⚠ ";

struct Column {
  const char* title;
  int width;
  wxListColumnFormat format;
  std::string (*text)(const PluginRow& row);
};

std::string nameOf(const PluginRow& row) {
  if (!row.skipped.empty()) return kSkippedMark + fileNameOf(row.plugin.path);
  return (row.plugin.isSynth() ? kInstrumentMark : "") + row.plugin.displayName();
}

// Of one that is left out nothing is known but why.
const Column kColumns[] = {
    {"Name", 240, wxLIST_FORMAT_LEFT, nameOf},
    {"Vendor", 150, wxLIST_FORMAT_LEFT,
     [](const PluginRow& row) { return row.skipped.empty() ? row.plugin.vendor : row.skipped; }},
    {"Product", 150, wxLIST_FORMAT_LEFT, [](const PluginRow& row) { return row.plugin.product; }},
    {"Input", 60, wxLIST_FORMAT_RIGHT, [](const PluginRow& row) { return row.plugin.inputs; }},
    {"Output", 64, wxLIST_FORMAT_RIGHT, [](const PluginRow& row) { return row.plugin.outputs; }},
    {"Path", 340, wxLIST_FORMAT_LEFT, [](const PluginRow& row) { return row.plugin.path; }},
};

// Every word stands somewhere in the row.
bool matches(const PluginRow& row, const wxString& wanted) {
  wxString all;
  for (const Column& column : kColumns) all += toWx(column.text(row)) + "\n";
  all.MakeLower();
  std::istringstream words(fromWx(wanted.Lower()));
  for (std::string word; words >> word;) {
    if (!all.Contains(toWx(word))) return false;
  }
  return true;
}

}  // namespace

// Shows those of the rows that pass the filter.
class PluginTable : public wxListView {
 public:
  explicit PluginTable(wxWindow* parent)
      : wxListView(parent, wxID_ANY, wxDefaultPosition, parent->FromDIP(wxSize(860, 340)),
                   wxLC_REPORT | wxLC_SINGLE_SEL | wxLC_VIRTUAL) {
    for (const Column& column : kColumns) AppendColumn(column.title, column.format, FromDIP(column.width));
    grey_.SetTextColour(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT));
  }

  void show(std::vector<const PluginRow*> rows) {
    const long before = GetFirstSelected();
    if (before >= 0) Select(before, false);
    rows_ = std::move(rows);
    SetItemCount(static_cast<long>(rows_.size()));
    Refresh();
    if (!rows_.empty()) choose(0);
  }
  void choose(long row) {
    if (row < 0 || row >= GetItemCount()) return;
    Select(row);
    Focus(row);
  }
  const PluginRow* selectedRow() const {
    const long row = GetFirstSelected();
    return row >= 0 && static_cast<size_t>(row) < rows_.size() ? rows_[static_cast<size_t>(row)] : nullptr;
  }

 private:
  wxString OnGetItemText(long row, long column) const override {
    return toWx(kColumns[column].text(*rows_[static_cast<size_t>(row)]));
  }
  wxItemAttr* OnGetItemAttr(long row) const override {
    return rows_[static_cast<size_t>(row)]->skipped.empty() ? nullptr : &grey_;
  }

  std::vector<const PluginRow*> rows_;
  mutable wxItemAttr grey_;
};

PluginListPanel::PluginListPanel(wxWindow* parent, Application& app, WindowProfile& profile)
    : wxPanel(parent), app_(app), profile_(profile) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(makeTop(), 0, wxEXPAND | wxBOTTOM, FromDIP(kGap));
  table_ = new PluginTable(this);
  all->Add(table_, 1, wxEXPAND | wxBOTTOM, FromDIP(kGap));
  all->Add(makeBottom(), 0, wxEXPAND);
  SetSizer(all);
  table_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { selectionChanged(); });
  table_->Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { selectionChanged(); });
  table_->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent&) { activate(); });
  timer_.SetOwner(this);
  Bind(wxEVT_TIMER, [this](wxTimerEvent&) { onTimer(); });
  reload();
}

wxSizer* PluginListPanel::makeTop() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  filter_ =
      new wxSearchCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_PROCESS_ENTER);
  filter_->SetDescriptiveText("Filter");
  filter_->ShowCancelButton(true);
  filter_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { applyFilter(); });
  filter_->Bind(wxEVT_TEXT_ENTER, [this](wxCommandEvent&) { activate(); });
  filter_->Bind(wxEVT_SEARCH_CANCEL,
                [this](wxCommandEvent&) { filter_->ChangeValue(wxString()), applyFilter(); });
  filter_->Bind(wxEVT_CHAR_HOOK, &PluginListPanel::onFilterKey, this);
  row->Add(filter_, 1, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  scanButton_ = new wxButton(this, wxID_ANY, "Sca&n…");
  scanButton_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { configureScan(); });
  row->Add(scanButton_, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  stopButton_ = new wxButton(this, wxID_ANY, "&Stop");
  stopButton_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
    if (scan_) scan_->stop();
  });
  row->Add(stopButton_, 0, wxALIGN_CENTRE_VERTICAL);
  return row;
}

wxSizer* PluginListPanel::makeBottom() {
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  status_ = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                             wxST_ELLIPSIZE_MIDDLE | wxST_NO_AUTORESIZE);
  row->Add(status_, 1, wxALIGN_CENTRE_VERTICAL | wxRIGHT, FromDIP(kGap));
  againButton_ = new wxButton(this, wxID_ANY, "Try a&gain");
  againButton_->SetToolTip("Looks at a plug-in again that scans leave out");
  againButton_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { tryAgain(); });
  row->Add(againButton_, 0, wxALIGN_CENTRE_VERTICAL);
  return row;
}

void PluginListPanel::reload() {
  rows_.clear();
  for (PluginDescription& plugin : listedPlugins(app_)) rows_.push_back({std::move(plugin), {}});
  listed_ = rows_.size();
  const SkippedPlugins leftOut(app_.files(), skippedPluginsPath(app_));
  for (const SkippedPlugin& skipped : leftOut.all()) {
    PluginRow& row = rows_.emplace_back();
    row.plugin.path = skipped.path;
    row.skipped = skipped.text();
  }
  applyFilter();
}

void PluginListPanel::applyFilter() {
  std::vector<const PluginRow*> shown;
  for (const PluginRow& row : rows_) {
    if (matches(row, filter_->GetValue())) shown.push_back(&row);
  }
  if (!scan_) {
    const bool instruments =
        std::ranges::any_of(shown, [](const PluginRow* row) { return row->plugin.isSynth(); });
    const wxString mark = instruments ? toWx(std::string(kInstrumentMark) + "instrument") : wxString();
    status_->SetLabel(rows_.empty() ? toWx(kPluginListEmpty)
                                    : wxString::Format("%zu of %zu   ", shown.size(), rows_.size()) + mark);
  }
  table_->show(std::move(shown));
  selectionChanged();
}

std::optional<std::string> PluginListPanel::selected() const {
  const PluginRow* row = table_->selectedRow();
  return row != nullptr && row->skipped.empty() ? std::optional(row->plugin.path) : std::nullopt;
}

void PluginListPanel::focusFilter() {
  filter_->SetFocus();
  filter_->SelectAll();
}

void PluginListPanel::selectionChanged() {
  updateButtons();
  // Which the column cuts off.
  const PluginRow* row = table_->selectedRow();
  if (!scan_ && row != nullptr && !row->skipped.empty()) {
    status_->SetLabel(toWx(fileNameOf(row->plugin.path) + ": " + row->skipped));
  }
  if (onSelection) onSelection();
}

void PluginListPanel::updateButtons() {
  const PluginRow* row = table_->selectedRow();
  scanButton_->Enable(!scan_);
  stopButton_->Enable(scan_ != nullptr);
  againButton_->Enable(!scan_ && row != nullptr && !row->skipped.empty());
}

void PluginListPanel::activate() {
  const auto path = selected();
  if (path && onChosen) onChosen(*path);
}

// The arrows move through the list while a filter is typed.
void PluginListPanel::onFilterKey(wxKeyEvent& event) {
  const int step = event.GetKeyCode() == WXK_DOWN ? 1 : event.GetKeyCode() == WXK_UP ? -1 : 0;
  if (step == 0) {
    event.Skip();
    return;
  }
  table_->choose(table_->GetFirstSelected() + step);
}

// ---- Scanning -------------------------------------------------------------------------------------------

void PluginListPanel::configureScan() {
  CVSTScanConfigurationDlg dialog(this, app_, profile_);
  if (dialog.ShowModal() == wxID_OK) begin(dialog.options());
}

void PluginListPanel::tryAgain() {
  const PluginRow* row = table_->selectedRow();
  if (row == nullptr || row->skipped.empty()) return;
  ScanOptions options;
  options.folder = folderOf(row->plugin.path);
  options.onlyLibrary = row->plugin.path;
  options.instruments = true;
  begin(std::move(options));
}

void PluginListPanel::begin(ScanOptions options) {
  scan_ = std::make_unique<PluginScan>(app_.files(), scanPlaces(app_), std::move(options));
  scan_->start();
  timer_.Start(kScanMilliseconds);
  updateButtons();
}

void PluginListPanel::onTimer() {
  if (!scan_) return;
  if (!scan_->running()) return finish();
  const wxString label = toWx("Scanning: " + scan_->currentPath());
  if (status_->GetLabel() != label) status_->SetLabel(label);
}

void PluginListPanel::finish() {
  timer_.Stop();
  const std::unique_ptr<PluginScan> scan = std::move(scan_);
  reload();
  const std::string text = scan->failure().empty() ? scan->summary() : scan->failure();
  status_->SetLabel(toWx(text));
  const size_t skipped = scan->newlySkipped().size();
  app_.prompter().message(skipped == 0 ? text
                                       : text + "\n" + std::to_string(skipped) +
                                             (skipped == 1 ? " library was" : " libraries were") +
                                             " left out: see the end of the list.");
}

// ---- As a dialog ----------------------------------------------------------------------------------------

std::optional<std::string> pickPlugin(wxWindow* parent, Application& app, WindowProfile& profile) {
  wxDialog dialog(parent, wxID_ANY, "VST plug-ins", wxDefaultPosition, wxDefaultSize,
                  wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER);
  auto* panel = new PluginListPanel(&dialog, app, profile);
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(panel, 1, wxEXPAND | wxALL, dialog.FromDIP(kMargin));
  all->Add(dialog.CreateButtonSizer(wxOK | wxCANCEL), 0, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM,
           dialog.FromDIP(kMargin));
  wxWindow* const ok = dialog.FindWindow(wxID_OK);
  ok->SetLabel("&Add");
  dialog.SetSizerAndFit(all);
  dialog.CentreOnParent();
  std::optional<std::string> chosen;
  const auto choose = [&](const std::string& path) {
    chosen = path;
    dialog.EndModal(wxID_OK);
  };
  panel->onChosen = choose;
  // On an empty list the button says what there is to do.
  panel->onSelection = [&] { ok->Enable(panel->listIsEmpty() || panel->selected()); };
  panel->onSelection();
  dialog.Bind(
      wxEVT_BUTTON,
      [&](wxCommandEvent&) {
        if (panel->listIsEmpty()) return app.prompter().message(kPluginListEmpty);
        if (const auto path = panel->selected()) choose(*path);
      },
      wxID_OK);
  panel->focusFilter();
  return dialog.ShowModal() == wxID_OK ? chosen : std::nullopt;
}

}  // namespace plumetta
