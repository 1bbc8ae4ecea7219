// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/listctrl.h>
#include <wx/vlbox.h>

#include <vector>

#include "ui/theme.h"
#include "vst/rack.h"

namespace plumetta {

// The positions of a rack, a row each: its number and its line.
class PositionList : public wxVListBox {
 public:
  PositionList(wxWindow* parent, Rack& rack);
  // Draws rows again whose plug-ins have stopped answering.
  void follow();

 private:
  wxString textOf(int row) const;
  void adoptTheme();
  void showWhole(int row);
  int textLeft() const;
  wxCoord OnMeasureItem(size_t row) const override;
  void OnDrawBackground(wxDC& dc, const wxRect& rect, size_t row) const override;
  void OnDrawItem(wxDC& dc, const wxRect& rect, size_t row) const override;

  Rack& rack_;
  Theme theme_ = Theme::current();
  int silent_ = 0;  // plug-ins that do not answer, as drawn
};

// A table about the plug-in at one position. It asks for what can be seen alone, since plug-ins may claim any
// number of programs and parameters.
class PluginTableBase : public wxListView {
 public:
  PluginTableBase(wxWindow* parent, Rack& rack, const wxSize& size);

 protected:
  // Null for an empty position and for a plug-in that is better left alone.
  const VstPlugin* plugin() const;
  void setRows(int position, int count);
  int position() const { return position_; }

  Rack& rack_;

 private:
  void fillWidth();

  int position_ = -1;
};

class ProgramTable : public PluginTableBase {
 public:
  ProgramTable(wxWindow* parent, Rack& rack);
  // Shows the programs of a position, the selected one marked.
  void show(int position);

 private:
  wxString OnGetItemText(long row, long column) const override;
};

class ParameterTable : public PluginTableBase {
 public:
  ParameterTable(wxWindow* parent, Rack& rack);
  void show(int position);
  // -1 for none.
  int selected() const;
  // Draws rows again whose values the plug-in has changed by itself. True when the selected one has.
  bool follow();

 private:
  wxString OnGetItemText(long row, long column) const override;

  std::vector<float> seen_;  // of the rows from `firstSeen_` on
  long firstSeen_ = 0;
};

}  // namespace plumetta
