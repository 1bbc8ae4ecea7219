// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/app.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <functional>

#include "dsp/strip_spectra.h"
#include "ui/document_panel.h"
#include "ui/window_profile.h"

namespace plumetta {

// Which samples of which document an analysis looks at: others want another one.
struct SampleState {
  const CPlumettaDoc* doc = nullptr;  // compared alone
  uint64_t revision = 0;
  const float* samples = nullptr;
  int32_t frames = 0;
  uint32_t sampleRate = 0;

  static SampleState of(const CPlumettaDoc& doc);
  bool operator==(const SampleState&) const = default;
};

// A window beside the documents that analyses the one in front and follows it. It computes while nothing else
// is to be done; its choices and its place are remembered in a section of the profile. Closing hides it.
class AnalysisDlg : public wxDialog {
 public:
  // Looks whether there is something new to compute, and computes a piece of it. To be called again as long
  // as it returns true. The panel, null for none, is not looked at beyond the call.
  virtual bool follow(DocumentPanel* front) = 0;

  // Hiding remembers where the window stood.
  bool Show(bool show = true) override;
  void storePlace();

 protected:
  AnalysisDlg(wxWindow* parent, const wxString& title, const char* section, WindowProfile& profile);

  // Choices that remember what was chosen.
  wxChoice* addChoice(wxSizer& row, const wxString& label, const wxArrayString& choices, const char* key,
                      int fallback, std::function<void()> chosen);
  wxCheckBox* addCheckBox(wxSizer& row, const wxString& label, const char* key, bool fallback,
                          std::function<void()> chosen);
  // Window function, size, range of levels and kind of axis; once.
  wxSizer* makeSpectrumControls(int smallestSize, int largestSize, SpectrumSettings usual, int usualDepthDb);
  // Lays the window out about its main part, which has this size at first, with the words below, and brings
  // it to where it was.
  void takeLayout(wxSizer& all, wxWindow& main, const wxSize& usual, const wxSize& least);

  SpectrumSettings spectrumSettings() const;
  int depthDb() const;
  bool logarithmic() const { return logarithmic_->GetValue(); }
  static constexpr double kLowestHz = 20.0;  // of a logarithmic axis

  // Other window functions or sizes are noticed by `follow`.
  static void settingsChosen() { wxWakeUpIdle(); }
  virtual void showDecibels() = 0;
  virtual void showFrequencies() = 0;

  static constexpr int kGap = 8;
  static constexpr int kMargin = 12;

  WindowProfile& profile_;
  const char* const section_;
  wxStaticText* const readout_;  // what is under the pointer
  wxStaticText* const state_;    // what is shown, and how far it is computed

 private:
  void restorePlace();

  int smallestSize_ = 0;
  wxChoice* window_ = nullptr;
  wxChoice* size_ = nullptr;
  wxChoice* depth_ = nullptr;
  wxCheckBox* logarithmic_ = nullptr;
};

}  // namespace plumetta
