// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/batch_dialog.h"

#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/sizer.h>

#include <cmath>

#include "batch/batch_functions.h"
#include "formats/text_export.h"
#include "platform/paths.h"
#include "platform/thread_priority.h"
#include "ui/progress_dialog.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kSection = "Batch";
constexpr int kFollowMilliseconds = 100;
constexpr int kGaugeSteps = 1000;
constexpr int kMargin = 16;
constexpr int kGap = 8;

// Where the results begin behind names of usual length, in tenths of a millimetre.
wxArrayInt logColumns() {
  wxArrayInt columns;
  for (const int place : {550, 800}) columns.Add(place);
  return columns;
}

}  // namespace

CBatchProcessorDlg::CBatchProcessorDlg(wxWindow* parent, Application& app, WindowProfile& profile)
    : wxDialog(parent, wxID_ANY, "Batch processor", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      app_(app),
      profile_(profile),
      timer_(this) {
  auto* all = new wxBoxSizer(wxVERTICAL);
  all->Add(makeChoices(), 0, wxEXPAND | wxALL, FromDIP(kMargin));
  logText_ = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, FromDIP(wxSize(640, 260)),
                            wxTE_MULTILINE | wxTE_READONLY | wxTE_DONTWRAP | wxTE_RICH2);
  wxTextAttr columns;
  columns.SetTabs(logColumns());
  logText_->SetDefaultStyle(columns);
  all->Add(logText_, 1, wxEXPAND | wxLEFT | wxRIGHT, FromDIP(kMargin));
  all->Add(makeProgress(), 0, wxEXPAND | wxLEFT | wxRIGHT | wxTOP, FromDIP(kMargin));
  all->Add(makeButtons(), 0, wxEXPAND | wxALL, FromDIP(kMargin));
  restoreValues();
  showRunning();
  SetEscapeId(wxID_CLOSE);
  SetSizerAndFit(all);
  CentreOnParent();
  input_->SetFocus();
  Bind(wxEVT_TIMER, [this](wxTimerEvent&) { follow(); });
  Bind(wxEVT_CLOSE_WINDOW, &CBatchProcessorDlg::closeAsked, this);
}

CBatchProcessorDlg::~CBatchProcessorDlg() {
  if (!running()) return;
  run_->requestStop();
  run_->requestStop();
  worker_.join();
}

// ---- Layout ---------------------------------------------------------------------------------------------

wxSizer* CBatchProcessorDlg::makeChoices() {
  auto* grid = new wxFlexGridSizer(3, FromDIP(wxSize(kGap, kGap)));
  grid->AddGrowableCol(1);
  addFolder(*grid, "&Input folder", input_, "Folder of the files to process");
  addFolder(*grid, "&Output folder", output_, "Folder for the results");
  wxArrayString functions;
  for (const BatchFunction& function : batchFunctions()) functions.Add(toWx(function.text));
  grid->Add(new wxStaticText(this, wxID_ANY, "&Function"), 0, wxALIGN_CENTRE_VERTICAL);
  function_ = new wxChoice(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, functions);
  grid->Add(function_, 0, wxEXPAND);
  grid->AddSpacer(0);
  grid->AddSpacer(0);
  recurse_ = new wxCheckBox(this, wxID_ANY, "&Subfolders as well");
  grid->Add(recurse_);
  choices_.insert(choices_.end(), {function_, recurse_});
  return grid;
}

void CBatchProcessorDlg::addFolder(wxSizer& grid, const wxString& label, wxTextCtrl*& field,
                                   const wxString& question) {
  grid.Add(new wxStaticText(this, wxID_ANY, label), 0, wxALIGN_CENTRE_VERTICAL);
  field = new wxTextCtrl(this, wxID_ANY);
  grid.Add(field, 1, wxEXPAND | wxALIGN_CENTRE_VERTICAL);
  auto* button = new wxButton(this, wxID_ANY, "Browse…");
  grid.Add(button);
  wxTextCtrl& target = *field;
  button->Bind(wxEVT_BUTTON, [this, &target, question](wxCommandEvent&) { browse(target, question); });
  choices_.insert(choices_.end(), {field, button});
}

wxSizer* CBatchProcessorDlg::makeProgress() {
  gauge_ = new wxGauge(this, wxID_ANY, kGaugeSteps, wxDefaultPosition, wxDefaultSize,
                       wxGA_HORIZONTAL | wxGA_SMOOTH);
  state_ = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                            wxST_ELLIPSIZE_MIDDLE | wxST_NO_AUTORESIZE);
  remaining_ = new wxStaticText(this, wxID_ANY, "About 00 min left", wxDefaultPosition, wxDefaultSize,
                                wxALIGN_RIGHT | wxST_NO_AUTORESIZE);
  auto* texts = new wxBoxSizer(wxHORIZONTAL);
  texts->Add(state_, 1);
  texts->Add(remaining_, 0, wxLEFT, FromDIP(kGap));
  auto* progress = new wxBoxSizer(wxVERTICAL);
  progress->Add(gauge_, 0, wxEXPAND);
  progress->Add(texts, 0, wxEXPAND | wxTOP, FromDIP(kGap) / 2);
  return progress;
}

wxSizer* CBatchProcessorDlg::makeButtons() {
  saveLog_ = new wxButton(this, wxID_SAVE, "Save &log…");
  startStop_ = new wxButton(this, wxID_ANY, "Start");
  close_ = new wxButton(this, wxID_CLOSE);
  auto* buttons = new wxBoxSizer(wxHORIZONTAL);
  buttons->Add(saveLog_);
  buttons->AddStretchSpacer();
  buttons->Add(startStop_);
  buttons->Add(close_, 0, wxLEFT, FromDIP(kGap));
  startStop_->SetDefault();
  startStop_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { startOrStop(); });
  saveLog_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { saveLog(); });
  close_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
  return buttons;
}

void CBatchProcessorDlg::showRunning() {
  for (wxWindow* choice : choices_) choice->Enable(!running());
  startStop_->SetLabel(running() ? "Stop" : "Start");
  startStop_->Enable();
  saveLog_->Enable(!running() && !log_.empty());
  close_->Enable(!running());
  if (!running()) remaining_->SetLabel(wxString());
}

// ---- Choices --------------------------------------------------------------------------------------------

void CBatchProcessorDlg::restoreValues() {
  input_->ChangeValue(toWx(profile_.text(kSection, "Input folder", "")));
  output_->ChangeValue(toWx(profile_.text(kSection, "Output folder", "")));
  const int function = profile_.integer(kSection, "Function", 0);
  const bool known = function >= 0 && function < static_cast<int>(function_->GetCount());
  function_->SetSelection(known ? function : 0);
  recurse_->SetValue(profile_.integer(kSection, "Subfolders", 0) == 1);
}

void CBatchProcessorDlg::storeValues() {
  profile_.setTexts(kSection, {{"Input folder", fromWx(input_->GetValue())},
                               {"Output folder", fromWx(output_->GetValue())},
                               {"Function", std::to_string(function_->GetSelection())},
                               {"Subfolders", recurse_->GetValue() ? "1" : "0"}});
}

void CBatchProcessorDlg::browse(wxTextCtrl& field, const wxString& question) {
  const std::string folder = dialogFolder(app_.files(), fromWx(field.GetValue()));
  wxDirDialog dialog(this, question, toWx(folder));
  if (dialog.ShowModal() == wxID_OK) field.ChangeValue(dialog.GetPath());
}

bool CBatchProcessorDlg::accept(BatchSettings& settings) {
  Prompter& prompter = app_.prompter();
  const bool usesChain = batchFunctions()[static_cast<size_t>(settings.function)].usesChain;
  if (usesChain && !app_.rack().hasActivePlugin()) {
    prompter.message(kNoActivePlugin);
    return false;
  }
  if (settings.input.empty() || settings.output.empty()) {
    prompter.message(kSelectDirectories);
    return false;
  }
  if (app_.files().kind(settings.input) != FileKind::folder) {
    prompter.message("Unable to open " + settings.input + "\nThere is no such folder.");
    return false;
  }
  if (!outputLiesInInput(settings)) return true;
  settings.mayChangeInput = prompter.question(overwriteQuestion(settings));
  return settings.mayChangeInput;
}

// ---- Running --------------------------------------------------------------------------------------------

void CBatchProcessorDlg::startOrStop() {
  if (!running()) return start();
  run_->requestStop();
  if (stopAsked_) startStop_->Disable();
  stopAsked_ = true;
}

void CBatchProcessorDlg::start() {
  log_.clear();
  logText_->Clear();
  gauge_->SetValue(0);
  state_->SetLabel(wxString());
  storeValues();
  const auto folder = [](const wxTextCtrl& field) {
    const std::string text = fromWx(field.GetValue());
    return text.empty() ? text : absolutePath(text);
  };
  BatchSettings settings;
  settings.input = folder(*input_);
  settings.output = folder(*output_);
  settings.function = function_->GetSelection();
  settings.recurse = recurse_->GetValue();
  if (!accept(settings)) return;
  if (batchFunctions()[static_cast<size_t>(settings.function)].usesChain) app_.secureDocuments();
  const auto toPending = [this](std::string_view text) {
    const std::lock_guard lock(pendingMutex_);
    pending_ += text;
  };
  run_ = std::make_unique<BatchRun>(app_.files(), settings, toPending, &app_.rack());
  finished_ = false;
  stopAsked_ = false;
  begun_ = std::chrono::steady_clock::now();
  worker_ = std::thread([this] {
    lowerThreadPriority();
    run_->run();
    finished_ = true;
  });
  showRunning();
  timer_.Start(kFollowMilliseconds);
}

void CBatchProcessorDlg::follow() {
  const bool finished = finished_;  // before the last texts are taken
  appendToLog();
  showProgress();
  if (finished && running()) finish();
}

void CBatchProcessorDlg::finish() {
  worker_.join();
  timer_.Stop();
  showRunning();
  for (const std::string& fault : app_.rack().takeFaultTexts()) app_.prompter().message(fault);
  if (closing_) {
    EndModal(wxID_CLOSE);
  } else if (!IsActive()) {
    RequestUserAttention(wxUSER_ATTENTION_INFO);
  }
}

// Only what is new: the time that a line takes doesn't grow with the log.
void CBatchProcessorDlg::appendToLog() {
  std::string text;
  {
    const std::lock_guard lock(pendingMutex_);
    text.swap(pending_);
  }
  if (text.empty()) return;
  log_ += text;
  std::erase(text, '\r');
  logText_->AppendText(toWx(text));
  logText_->ShowPosition(logText_->GetLastPosition());
}

void CBatchProcessorDlg::showProgress() {
  const BatchProgress progress = run_->progress();
  if (progress.total == 0) {
    gauge_->Pulse();
    state_->SetLabel(finished_ ? "No files" : "Looking for files…");
    if (finished_) gauge_->SetValue(0);
    return;
  }
  const double fraction = static_cast<double>(progress.done) / static_cast<double>(progress.total);
  gauge_->SetValue(static_cast<int>(std::lround(fraction * kGaugeSteps)));
  wxString text = toWx(std::to_string(progress.done) + " of " + std::to_string(progress.total) + " files");
  if (!finished_) {
    text += stopAsked_ ? " – stopping after " : " – ";
    text += toWx(progress.file);
  }
  state_->SetLabel(text);
  remaining_->SetLabel(finished_ || stopAsked_ ? wxString() : remainingText(fraction, begun_));
}

void CBatchProcessorDlg::saveLog() {
  wxFileDialog dialog(this, "Save log", wxString(), "batch.txt",
                      "Text file (*.txt)|*.txt|All Files (*.*)|*.*", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  if (dialog.ShowModal() != wxID_OK) return;
  std::string path = fromWx(dialog.GetPath());
  if (extensionOf(path).empty()) path += ".txt";
  const SaveResult result = writeTextFile(app_.files(), path, log_);
  if (!result.saved) app_.prompter().message("Unable to save " + path + "\n" + result.reason);
}

// Closing while the batch runs stops it, and closes when it has ended.
void CBatchProcessorDlg::closeAsked(wxCloseEvent& event) {
  if (running()) {
    if (event.CanVeto()) event.Veto();
    if (closing_) return;
    closing_ = true;
    run_->requestStop();
    run_->requestStop();
    startStop_->Disable();
    return;
  }
  storeValues();
  EndModal(wxID_CLOSE);
}

}  // namespace plumetta
