// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/app.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "doc/document.h"
#include "dsp/spectrum.h"
#include "ui/curve_plot.h"
#include "ui/window_profile.h"

namespace plumetta {

// The averaged spectrum of the selection of the document in front, or of all of it, beside the documents: it
// follows what is selected and changed, computes while nothing else is to be done, reads out levels and
// notes, lists the peaks, and holds a saved spectrum against the present one. Closing hides it.
class CSpectrumDlg : public wxDialog {
 public:
  CSpectrumDlg(wxWindow* parent, Application& app, WindowProfile& profile);

  // Looks whether there is something new to compute, and computes a piece of it. To be called again as long
  // as it returns true. The document, null for none, is not looked at beyond the call.
  bool follow(const CPlumettaDoc* doc);

  // Hiding remembers where the window stood.
  bool Show(bool show = true) override;
  void storePlace();

 private:
  // Whose spectrum it is: another one wants another spectrum.
  struct Subject {
    const CPlumettaDoc* doc = nullptr;  // compared alone
    uint64_t revision = 0;
    const float* samples = nullptr;
    int32_t frames = 0;
    uint32_t sampleRate = 0;
    int32_t first = 0, last = 0;
    int size = 0;
    int window = 0;

    bool operator==(const Subject&) const = default;
  };

  void restorePlace();
  wxSizer* makeControls();
  wxSizer* makeFileButtons();
  wxChoice* addChoice(wxSizer& row, const wxString& label, const wxArrayString& choices, const char* key,
                      int fallback, void (CSpectrumDlg::*chosen)());
  void makePeakList();
  void bindPlot();

  SpectrumSettings settings() const;
  Subject subjectOf(const CPlumettaDoc* doc) const;
  void start(const CPlumettaDoc* doc, const Subject& subject);
  void settingsChosen() { wxWakeUpIdle(); }
  void showRecord();
  void showCurves();
  void showPeaks();
  void showFrequencies();
  void showDecibels();
  void showReadout(std::optional<double> hz);
  void showState();
  void addCurves(std::vector<PlotCurve>& curves, const SpectrumRecord& record, const wxString& name,
                 bool reference) const;

  void save();
  void load();
  void forget();

  Application& app_;
  WindowProfile& profile_;
  CurvePlot* plot_;
  wxListCtrl* peakList_;
  wxStaticText* readout_;
  wxStaticText* state_;
  wxChoice* window_;
  wxChoice* size_;
  wxChoice* depth_;
  wxCheckBox* logarithmic_;
  wxButton* save_;
  wxButton* forget_;

  Subject subject_;
  std::unique_ptr<SpectrumAverage> average_;  // while there is more to compute
  std::string title_;                         // of the document
  SpectrumRecord record_;                     // without channels while there is none
  SpectrumRecord reference_;
  std::string referenceName_;
  std::vector<SpectrumPeak> peaks_;
  std::chrono::steady_clock::time_point lastShown_;
};

}  // namespace plumetta
