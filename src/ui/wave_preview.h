// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "doc/peak_pyramid.h"
#include "ui/live_view.h"

namespace plumetta {

// A small picture of a buffer that is no document: its channels one below the other, with a line of text.
class WavePreview : public LiveView {
 public:
  // Shows `text` alone until the buffer is said to be filled.
  WavePreview(wxWindow* parent, const CWave& wave);

  // The buffer has changed.
  void show(const wxString& text);
  // There is nothing to be shown, and perhaps a reason why.
  void clear(const wxString& text = wxString());

 protected:
  void paint(wxGraphicsContext& gc, const wxSize& size) override;

 private:
  void paintChannel(wxGraphicsContext& gc, int channel, double top, const wxSize& lane);

  const CWave& wave_;
  PeakPyramid peaks_;
  bool filled_ = false;
  wxString text_;
  std::vector<PeakColumn> columns_;
};

}  // namespace plumetta
