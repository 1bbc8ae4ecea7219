// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/stattext.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "dsp/sonogram.h"
#include "ui/analysis_dialog.h"
#include "ui/surface_view.h"

namespace plumetta {

// The spectra of the selection of the document in front, or of what can be seen of it, as a landscape. Of its
// active channels together.
class C3DSpectrumDlg : public AnalysisDlg {
 public:
  C3DSpectrumDlg(wxWindow* parent, WindowProfile& profile);

  bool follow(DocumentPanel* front) override;
  // Hiding remembers from where it was looked at.
  bool Show(bool show = true) override;

 private:
  // Whose spectra they are: another one wants others.
  struct Subject {
    SampleState samples;
    std::vector<int> channels;
    double first = 0, length = 0;
    enum Part { kSelection, kVisible, kPlayed } part = kVisible;
    int size = 0;
    int window = 0;

    bool operator==(const Subject&) const = default;
  };

  Subject subjectOf(const DocumentPanel& front) const;
  // What has been heard last, in whole spectra; false when that is not wanted or nothing plays.
  bool takePlayed(const DocumentPanel& front, Subject& subject) const;
  SonogramPlan planOf(const Subject& subject) const;
  void showField();
  void showScale();
  FrequencyAxis frequencies() const;
  void showDecibels() override;
  void showFrequencies() override;
  void showReadout(std::optional<SurfacePainter::Spot> spot);
  void showState();
  wxString positionText(double frame) const;

  SurfaceView* view_;
  wxCheckBox* live_;

  Subject subject_;
  TimeFormat timeFormat_ = kTimeSamples;
  std::unique_ptr<Sonogram> spectra_;
  bool computing_ = false;
  std::chrono::steady_clock::time_point lastShown_;
};

}  // namespace plumetta
