// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/rack_lists.h"

#include <wx/dc.h>
#include <wx/settings.h>

#include <algorithm>
#include <utility>

#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kRowPadding = 4;
constexpr int kNumberWidth = 40;
constexpr int kLeastName = 80;

enum ParameterColumn { kName, kValue, kNumber };

}  // namespace

// ---- Positions ------------------------------------------------------------------------------------------

PositionList::PositionList(wxWindow* parent, Rack& rack)
    : wxVListBox(parent, wxID_ANY, wxDefaultPosition, parent->FromDIP(wxSize(420, 300)), wxBORDER_THEME),
      rack_(rack) {
  SetItemCount(static_cast<size_t>(rack.positionCount()));
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

void PositionList::adoptTheme() {
  theme_ = Theme::current();
  SetBackgroundColour(theme_.margin);
  Refresh();
}

wxString PositionList::textOf(int row) const {
  const bool givenUp = rack_.host().isGivenUp(rack_.slotAt(row));
  return toWx(rack_.lineText(row) + (givenUp ? " – does not answer" : ""));
}

void PositionList::follow() {
  int silent = 0;
  for (int row = 0; row < rack_.positionCount(); ++row) {
    silent += rack_.host().isGivenUp(rack_.slotAt(row)) ? 1 : 0;
  }
  if (std::exchange(silent_, silent) != silent) Refresh();
}

int PositionList::textLeft() const { return FromDIP(kNumberWidth + 2 * kRowPadding); }

// A line that is cut off stands whole in a tooltip.
void PositionList::showWhole(int row) {
  const wxString text = row >= 0 ? textOf(row) : wxString();
  const bool cut = GetTextExtent(text).x > GetClientSize().x - textLeft();
  if (cut && GetToolTipText() != text) SetToolTip(text);
  if (!cut && GetToolTip() != nullptr) UnsetToolTip();
}

wxCoord PositionList::OnMeasureItem(size_t) const { return GetCharHeight() + 2 * FromDIP(kRowPadding); }

void PositionList::OnDrawBackground(wxDC& dc, const wxRect& rect, size_t row) const {
  dc.SetPen(*wxTRANSPARENT_PEN);
  if (IsSelected(row)) {
    dc.SetBrush(theme_.laneSelected);
    dc.DrawRectangle(rect);
    dc.SetBrush(theme_.accent);
    dc.DrawRectangle(rect.x, rect.y, FromDIP(3), rect.height);
  }
}

void PositionList::OnDrawItem(wxDC& dc, const wxRect& rect, size_t row) const {
  const int position = static_cast<int>(row);
  const int top = rect.y + FromDIP(kRowPadding);
  const int left = rect.x + textLeft();
  const wxString number = wxString::Format("%d", position + 1);
  dc.SetFont(GetFont());
  dc.SetTextForeground(theme_.textQuiet);
  dc.DrawText(number, rect.x + FromDIP(kNumberWidth) - dc.GetTextExtent(number).x, top);
  const bool givenUp = rack_.host().isGivenUp(rack_.slotAt(position));
  const bool heard = rack_.activeSlotAt(position) >= 0;
  dc.SetTextForeground(givenUp ? theme_.clip : heard ? theme_.text : theme_.textQuiet);
  const int room = rect.GetRight() - left - FromDIP(kRowPadding);
  dc.DrawText(wxControl::Ellipsize(textOf(position), dc, wxELLIPSIZE_END, room), left, top);
}

// ---- Tables ---------------------------------------------------------------------------------------------

PluginTableBase::PluginTableBase(wxWindow* parent, Rack& rack, const wxSize& size)
    : wxListView(parent, wxID_ANY, wxDefaultPosition, parent->FromDIP(size),
                 wxLC_REPORT | wxLC_SINGLE_SEL | wxLC_VIRTUAL),
      rack_(rack) {
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    fillWidth();
    event.Skip();
  });
}

// The first column takes what the others leave.
void PluginTableBase::fillWidth() {
  int room = GetClientSize().x;
  for (int column = 1; column < GetColumnCount(); ++column) room -= GetColumnWidth(column);
  if (GetColumnCount() > 0 && room > FromDIP(kLeastName)) SetColumnWidth(0, room);
}

const VstPlugin* PluginTableBase::plugin() const {
  return rack_.host().isGivenUp(rack_.slotAt(position_)) ? nullptr : rack_.pluginAt(position_);
}

void PluginTableBase::setRows(int position, int count) {
  position_ = position;
  const long before = GetFirstSelected();
  if (before >= count) Select(before, false);
  if (GetItemCount() != count) SetItemCount(count);
  Refresh();
}

ProgramTable::ProgramTable(wxWindow* parent, Rack& rack) : PluginTableBase(parent, rack, wxSize(420, 110)) {
  AppendColumn("Program");
}

void ProgramTable::show(int position) {
  const VstPlugin* plugin = rack_.pluginAt(position);
  setRows(position, plugin != nullptr ? plugin->programCount() : 0);
  const int program = rack_.programOf(rack_.slotAt(position));
  if (program < 0 || program >= GetItemCount()) return;
  if (GetFirstSelected() != program) Select(program);
  EnsureVisible(program);
}

wxString ProgramTable::OnGetItemText(long row, long) const {
  return plugin() != nullptr ? toWx(rack_.programLine(position(), static_cast<int>(row))) : wxString();
}

ParameterTable::ParameterTable(wxWindow* parent, Rack& rack)
    : PluginTableBase(parent, rack, wxSize(420, 160)) {
  AppendColumn("Parameter");
  AppendColumn("Value", wxLIST_FORMAT_RIGHT, FromDIP(110));
  AppendColumn("0 to 1", wxLIST_FORMAT_RIGHT, FromDIP(64));
}

void ParameterTable::show(int position) {
  const VstPlugin* plugin = rack_.pluginAt(position);
  const int count = plugin != nullptr ? plugin->parameterCount() : 0;
  setRows(position, count);
  if (count > 0 && selected() < 0) Select(0);
}

int ParameterTable::selected() const {
  const long row = GetFirstSelected();
  return row < GetItemCount() ? static_cast<int>(row) : -1;
}

bool ParameterTable::follow() {
  const VstPlugin* const source = plugin();
  if (source == nullptr || GetItemCount() == 0) return false;
  const long first = std::max(GetTopItem(), 0L);
  const long beyond = std::min(first + GetCountPerPage() + 1, static_cast<long>(GetItemCount()));
  const long chosen = selected();
  std::vector<float> values;
  for (long row = first; row < beyond; ++row) values.push_back(source->parameter(static_cast<int>(row)));
  bool chosenMoved = false;
  for (long row = first; row < beyond && first == firstSeen_ && values.size() == seen_.size(); ++row) {
    const auto i = static_cast<size_t>(row - first);
    if (values[i] == seen_[i]) continue;
    RefreshItem(row);
    chosenMoved |= row == chosen;
  }
  seen_ = std::move(values);
  firstSeen_ = first;
  return chosenMoved;
}

wxString ParameterTable::OnGetItemText(long row, long column) const {
  const VstPlugin* const source = plugin();
  const int index = static_cast<int>(row);
  if (source == nullptr) return wxString();
  if (column == kName) return toWx(source->parameterName(index));
  if (column == kValue) return toWx(rack_.parameterText(position(), index));
  return wxString::Format("%2.2f", static_cast<double>(source->parameter(index)));
}

}  // namespace plumetta
