// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/stattext.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "ui/analysis_dialog.h"
#include "ui/document_tabs.h"
#include "ui/sonogram_view.h"

namespace plumetta {

// The sonogram of what can be seen of the document in front: zooming and scrolling here are zooming and
// scrolling there, and so are cursor and selection. Of its active channels, each for itself or together.
class CSonogramDlg : public AnalysisDlg {
 public:
  CSonogramDlg(wxWindow* parent, DocumentTabs& tabs, WindowProfile& profile);

  bool follow(DocumentPanel* front) override;
  // What is hidden keeps no memory.
  bool Show(bool show = true) override;

 private:
  // Whose sonogram it is: another one wants another sonogram.
  struct Subject {
    SampleState samples;
    std::vector<int> channels;
    double first = 0, length = 0;
    int columns = 0;
    int size = 0;
    int window = 0;
    bool together = false;

    bool operator==(const Subject&) const = default;
  };

  void bindView();
  Subject subjectOf(const CPlumettaDoc& doc, const DocumentPanel::Stretch& seen) const;
  SonogramPlan planOf(const Subject& subject) const;
  void showScene(DocumentPanel* front);
  bool compute(const CWave& wave);
  void showDecibels() override;
  void showFrequencies() override;
  void showReadout();
  void showState();

  DocumentTabs& tabs_;
  SonogramView* view_;
  wxChoice* planes_;

  Subject subject_;
  std::unique_ptr<Sonogram> shown_;
  std::unique_ptr<Sonogram> coming_;  // takes the place of `shown_` once it has something of every column
  bool computing_ = false;            // the newer of the two is not complete
  int channels_ = 0;                  // of the document
  std::optional<SonogramView::Place> pointer_;
  std::chrono::steady_clock::time_point lastShown_;
};

}  // namespace plumetta
