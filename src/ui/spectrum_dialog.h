// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/button.h>
#include <wx/listctrl.h>
#include <wx/stattext.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "dsp/spectrum.h"
#include "ui/analysis_dialog.h"
#include "ui/curve_plot.h"

namespace plumetta {

// The averaged spectrum of the selection of the document in front, or of all of it: it reads out levels and
// notes, lists the peaks, and holds a saved spectrum against the present one.
class CSpectrumDlg : public AnalysisDlg {
 public:
  CSpectrumDlg(wxWindow* parent, Application& app, WindowProfile& profile);

  bool follow(DocumentPanel* front) override;

 private:
  // Whose spectrum it is: another one wants another spectrum.
  struct Subject {
    SampleState samples;
    int32_t first = 0, last = 0;
    int size = 0;
    int window = 0;

    bool operator==(const Subject&) const = default;
  };

  wxSizer* makeFileButtons();
  void makePeakList();
  void bindPlot();

  Subject subjectOf(const CPlumettaDoc* doc) const;
  void start(const CPlumettaDoc* doc, const Subject& subject);
  void showRecord();
  void showCurves();
  void showPeaks();
  void showFrequencies() override;
  void showDecibels() override;
  void showReadout(std::optional<double> hz);
  void showState();
  void addCurves(std::vector<PlotCurve>& curves, const SpectrumRecord& record, const wxString& name,
                 bool reference) const;

  void save();
  void load();
  void forget();

  Application& app_;
  CurvePlot* plot_;
  wxListCtrl* peakList_;
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
