// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the menus: those of the command table, and those that only a window has.
#include <wx/aboutdlg.h>
#include <wx/generic/aboutdlgg.h>
#include <wx/toolbar.h>
#include <wx/version.h>

#include "doc/selection_tempo.h"
#include "doc/view_geometry.h"
#include "ui/batch_dialog.h"
#include "ui/bpm_dialog.h"
#include "ui/edit_dialogs.h"
#include "ui/main_frame.h"
#include "ui/midi_configuration_dialog.h"
#include "ui/preferences_dialog.h"
#include "ui/statistics_dialog.h"
#include "ui/text.h"
#include "ui/toolbar_icons.h"

namespace plumetta {
namespace {

void append(std::vector<Action>& actions, std::vector<Action> more) {
  for (Action& action : more) actions.push_back(std::move(action));
}

// '&' in a file name is no mnemonic.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '&' ? std::string("&&") : std::string(1, c);
  return result;
}

}  // namespace

std::vector<MenuPlan> MainFrame::menuPlan() {
  std::vector<MenuPlan> plan{fileMenu(), editMenu(), viewMenu()};
  plan.push_back(processMenu());
  plan.push_back(channelMenu());
  plan.push_back(markerMenu());
  plan.push_back({"&Loop", commandActions(Menu::loop)});
  plan.push_back({"V&olume", commandActions(Menu::volume)});
  plan.push_back(transportMenu());
  plan.push_back(windowMenu());
  plan.push_back(helpMenu());
  return plan;
}

Action MainFrame::documentAction(const char* id, const char* text, const char* key, const char* help,
                                 std::function<void(CPlumettaDoc&)> run) {
  Action action{id, text, key, help, [this, run = std::move(run)] {
                  if (CPlumettaDoc* doc = tabs_->active()) run(*doc);
                }};
  action.enabled = [this] { return tabs_->active() != nullptr; };
  return action;
}

Action MainFrame::viewAction(const char* id, const char* text, const char* key, const char* help,
                             void (DocumentPanel::*run)()) {
  return documentAction(id, text, key, help, [this, run](CPlumettaDoc&) { (tabs_->activePanel()->*run)(); });
}

// ---- File -----------------------------------------------------------------------------------------------

MenuPlan MainFrame::fileMenu() {
  Action save = documentAction("save", "&Save", "Ctrl+S", "Save the file under its name",
                               [this](CPlumettaDoc& doc) { files_.save(doc); });
  save.enabled = [this] {
    const CPlumettaDoc* doc = tabs_->active();
    return doc != nullptr && (doc->modified() || !isNamed(*doc));
  };
  Action saveSelection =
      documentAction("save-selection", "Save selec&tion as…", "", "Save the selected part as WAV",
                     [this](CPlumettaDoc& doc) { files_.saveSelection(doc); });
  Action split =
      documentAction("split", "Split at &markers…", "", "Save each stretch between markers as a file",
                     [this](CPlumettaDoc& doc) { files_.split(doc); });
  split.enabled = [this] { return tabs_->active() != nullptr && !tabs_->active()->wave().markers.empty(); };
  Action recent{"recent", "&Recent files", "", "", nullptr};
  recent.entries = [this] { return recentActions(); };
  recent.enabled = [this] { return !recent_.paths().empty(); };
  const auto anyOpen = [this] { return tabs_->active() != nullptr; };
  return {
      "&File",
      {{"new", "&New…", "Ctrl+N", "A new, silent file", [this] { files_.createNew(); }},
       {"open", "&Open…", "Ctrl+O", "Open audio files", [this] { files_.open(); }},
       {"open-raw", "Open as ra&w…", "", "Open files that have no header", [this] { files_.openRaw(); }},
       {"open-url", "Open from &URL…", "Ctrl+Shift+O", "Fetch a file from a server and open it",
        [this] { files_.openAddress(); }},
       recent,
       kSeparator,
       save,
       documentAction("save-as", "Save &as…", "Ctrl+Shift+S", "Save under another name or in another format",
                      [this](CPlumettaDoc& doc) { files_.saveAs(doc); }),
       saveSelection,
       split,
       documentAction("export-text", "&Export as text…", "", "Write the samples as numbers",
                      [this](CPlumettaDoc& doc) { files_.exportText(doc); }),
       kSeparator,
       {"batch", "&Batch processor…", "", "One function over every file of a folder",
        [this] { processFolder(); }},
       kSeparator,
       documentAction("close", "&Close", "Ctrl+W", "Close this file",
                      [this](CPlumettaDoc& doc) { files_.close(doc); }),
       {"close-all", "Close a&ll", "Ctrl+Shift+W", "Close every file", [this] { files_.closeAll(); },
        anyOpen},
       kSeparator,
       {"exit", "E&xit", "Ctrl+Q", "Leave Plumetta", [this] { Close(); }}}};
}

void MainFrame::processFolder() { CBatchProcessorDlg(this, app_, profile_).ShowModal(); }

std::vector<Action> MainFrame::recentActions() {
  std::vector<Action> actions;
  for (const std::string& path : recent_.paths()) {
    const std::string digit = actions.size() < 9 ? "&" + std::to_string(actions.size() + 1) + "  " : "    ";
    actions.push_back(
        {"", digit + escaped(path), "", "Open " + path, [this, path] { files_.openRecent(path); }});
  }
  return actions;
}

// ---- Edit -----------------------------------------------------------------------------------------------

MenuPlan MainFrame::editMenu() {
  const auto buffer = [this] { return app_.clipboard() != nullptr; };
  MenuPlan menu{"&Edit", groupedActions(Menu::edit, {"undo", "redo", "", "cut", "copy", "paste", "paste-mix",
                                                     "paste-mix-markers"})};
  append(menu.actions,
         {{"paste-new", "Paste as ne&w file", "Ctrl+Alt+V", "What was cut or copied as a file of its own",
           [this] { files_.pasteAsNew(); }, buffer},
          {"paste-system", "Paste from s&ystem clipboard", "", "Audio that another program has copied",
           [this] { files_.pasteFromSystem(); }},
          kSeparator});
  append(menu.actions, groupedActions(Menu::edit, {"delete", "trim"}));
  append(
      menu.actions,
      {documentAction("silence", "Insert &silence…", "Ctrl+I", "Insert a silent stretch",
                      [this](CPlumettaDoc& doc) { insertSilence(doc); }),
       kSeparator,
       documentAction("select-all", "Select &all", "Ctrl+A", "Select the whole file",
                      [](CPlumettaDoc& doc) { doc.select(0, doc.lastFrame()); }),
       documentAction("select-none", "Select non&e", "Ctrl+Shift+A", "Take the selection away",
                      [](CPlumettaDoc& doc) { doc.selectNone(); }),
       selectionAction("lengthen", "&Lengthen selection", "Ctrl+]", "By the factor of the preferences",
                       false),
       selectionAction("shorten", "S&horten selection", "Ctrl+[", "By the factor of the preferences", true),
       documentAction("go-to", "&Go to…", "Ctrl+G", "Put the cursor at a position",
                      [this](CPlumettaDoc& doc) { goTo(doc); }),
       kSeparator,
       {"preferences", "Pre&ferences…", "Ctrl+,", "How the editor behaves", [this] { editPreferences(); }},
       {"midi", "&MIDI remote control…", "", "Controllers of MIDI devices that drive the editor",
        [this] { configureMidi(); }},
       {"audio", "Aud&io configuration…", "", "Devices, rates and buffers of output and input",
        [this] { configureAudio(); }},
       {"routing", "Output routi&ng…", "", "Which channel is heard on which output",
        [this] { configureRouting(); }}});
  return menu;
}

void MainFrame::insertSilence(CPlumettaDoc& doc) {
  const auto choice = askSilence(this, doc, profile_);
  if (!choice) return;
  runCommand(doc, *findCommand("insert-silence"),
             {FrameOrTime{static_cast<double>(choice->position)},
              FrameOrTime{static_cast<double>(choice->lengthFrames)}});
}

void MainFrame::goTo(CPlumettaDoc& doc) {
  const auto position = askPosition(this, doc, profile_);
  if (!position) return;
  doc.setCursor(*position);
  tabs_->activePanel()->showFrame(doc.view().cursor);
}

Action MainFrame::selectionAction(const char* id, const char* text, const char* key, const char* help,
                                  bool shorten) {
  Action action = documentAction(id, text, key, help, [this, shorten](CPlumettaDoc& doc) {
    const double factor = app_.settings().display.selectionFactor;
    scaleSelection(doc, shorten ? 1 / factor : factor);
  });
  action.enabled = [this] { return tabs_->active() != nullptr && tabs_->active()->view().hasSelection(); };
  return action;
}

void MainFrame::scaleSelection(CPlumettaDoc& doc, double factor) {
  const ViewState& state = doc.view();
  doc.select(state.lowerBound(),
             scaledUpper(state.lowerBound(), state.upperBound(), factor, doc.lastFrame()));
}

void MainFrame::editPreferences() {
  if (askPreferences(this, app_.settings())) applySettings();
}

void MainFrame::configureMidi() {
  CMidiConfigurationDlg dialog(this, app_.midi(), app_.settings().midi, app_.prompter());
  if (dialog.ShowModal() == wxID_OK) app_.saveSettings();
}

// ---- View and markers
// --------------------------------------------------------------------------------------

MenuPlan MainFrame::viewMenu() {
  using Panel = DocumentPanel;
  Action toolbar{"toolbar", "&Toolbar", "", "", [this] { showToolBar(GetToolBar() == nullptr); }};
  toolbar.checked = [this] { return GetToolBar() != nullptr; };
  Action status{"status-bar", "Status &bar", "", "", [this] {
                  GetStatusBar()->Show(!GetStatusBar()->IsShown());
                  profile_.setInteger("Window", "Status bar", GetStatusBar()->IsShown() ? 1 : 0);
                  SendSizeEvent();
                }};
  status.checked = [this] { return GetStatusBar()->IsShown(); };
  Action transport{"transport-bar", "Tra&nsport bar", "", "",
                   [this] { showTransportBar(!transportBar_->IsShown()); }};
  transport.checked = [this] { return transportBar_ != nullptr && transportBar_->IsShown(); };
  Action history{"history", "&History", "Ctrl+H", "What has been done to this file", [this] {
                   historyWanted_ = !historyWanted_;
                   profile_.setInteger("Window", "History", historyWanted_ ? 1 : 0);
                   showHistory();
                 }};
  history.checked = [this] { return historyWanted_; };
  Action displays{"displays", "&Displays", "", "What can be seen of the sound while it plays", nullptr};
  displays.actions = displays_->actions();
  Action skin{"skin", "S&kin", "", "The colours of the waveform and of what stands around it", nullptr};
  skin.entries = [this] { return skins_.entries(); };
  return {
      "&View",
      {viewAction("zoom-in", "Zoom &in", "Ctrl++", "Show less of the file, larger", &Panel::zoomIn),
       viewAction("zoom-out", "Zoom &out", "Ctrl+-", "Show more of the file", &Panel::zoomOut),
       viewAction("zoom-selection", "Zoom to s&election", "Ctrl+E", "Fill the window with the selection",
                  &Panel::zoomToSelection),
       viewAction("zoom-all", "Zoom &all", "Ctrl+0", "Show the whole file", &Panel::zoomAll),
       kSeparator,
       viewAction("zoom-vertical-in", "Zoom in &vertically", "Ctrl+Up", "Show quiet passages larger",
                  &Panel::zoomVerticalIn),
       viewAction("zoom-vertical-out", "Zoom out ve&rtically", "Ctrl+Down", "Show the waveform smaller",
                  &Panel::zoomVerticalOut),
       viewAction("zoom-vertical-reset", "&Full amplitude", "Ctrl+Shift+0", "Show full scale",
                  &Panel::zoomVerticalReset),
       kSeparator,
       documentAction("statistics", "Statistic&s…", "F8", "Levels, format, markers and envelope in figures",
                      [this](CPlumettaDoc& doc) { showStatistics(doc); }),
       documentAction("spectrum", "S&pectrum…", "F9", "Levels along frequency, peaks and their notes",
                      [this](CPlumettaDoc&) { showSpectrum(); }),
       documentAction("sonogram", "Sono&gram…", "Shift+F9", "Levels along time and frequency as colours",
                      [this](CPlumettaDoc&) { showSonogram(); }),
       documentAction("spectrum-3d", "&3D spectrum…", "Ctrl+F9", "Spectra along time as a landscape",
                      [this](CPlumettaDoc&) { show3DSpectrum(); }),
       kSeparator,
       history,
       displays,
       skin,
       toolbar,
       transport,
       status}};
}

MenuPlan MainFrame::markerMenu() {
  MenuPlan menu{"&Marker", {}};
  menu.actions.push_back(documentAction("marker-at-cursor", "&Marker at the cursor", "M",
                                        "Mark this position", [this](CPlumettaDoc& doc) { addMarker(doc); }));
  append(menu.actions, groupedActions(Menu::marker, {"marker-selection"}));
  menu.actions.push_back(kSeparator);
  menu.actions.push_back(documentAction("next-marker", "Go to the &next marker", "N", "",
                                        [this](CPlumettaDoc& doc) { goToMarker(doc, true); }));
  menu.actions.push_back(documentAction("previous-marker", "Go to the &previous marker", "Shift+N", "",
                                        [this](CPlumettaDoc& doc) { goToMarker(doc, false); }));
  menu.actions.push_back(kSeparator);
  append(menu.actions, groupedActions(Menu::marker, {"marker-grid", "set-region", "marker-bpm"}));
  menu.actions.push_back(documentAction("bpm", "BPM calc&ulator…", "", "The tempo of the selection",
                                        [this](CPlumettaDoc& doc) { showTempo(doc); }));
  append(menu.actions,
         groupedActions(Menu::marker, {"", "auto-slice", "auto-region", "", "scramble", "", "marker-clear"}));
  return menu;
}

void MainFrame::addMarker(CPlumettaDoc& doc) {
  runCommand(doc, *findCommand("marker"), {FrameOrTime{double(doc.view().cursor)}, std::string()});
}

void MainFrame::showTempo(CPlumettaDoc& doc) {
  // Before anything is asked; any number of beats would do.
  if (const std::string problem = tempoProblem(doc, 1); !problem.empty()) {
    prompter_.message(problem);
    return;
  }
  CBpmDlg(this, doc, profile_).ShowModal();
}

void MainFrame::goToMarker(CPlumettaDoc& doc, bool forward) {
  const CMarkerList& markers = doc.wave().markers;
  const int32_t cursor = doc.view().cursor;
  const auto marker = forward ? markers.nextAfter(cursor) : markers.previousBefore(cursor);
  if (!marker) return;
  doc.setCursor(marker->position);
  tabs_->activePanel()->showFrame(doc.view().cursor);
}

void MainFrame::showStatistics(CPlumettaDoc& doc) { CStatisticsDlg(this, doc).ShowModal(); }

template <class Dialog, class... Arguments>
void MainFrame::showAnalysis(Dialog*& dialog, Arguments&... arguments) {
  if (dialog == nullptr) {
    dialog = new Dialog(this, arguments..., profile_);
    analyses_.push_back(dialog);
  }
  dialog->Show();
  dialog->Raise();
}

void MainFrame::showSpectrum() { showAnalysis(spectrum_, app_); }

void MainFrame::showSonogram() { showAnalysis(sonogram_, *tabs_); }

void MainFrame::show3DSpectrum() { showAnalysis(surface_); }

// ---- Window and help ------------------------------------------------------------------------------------

MenuPlan MainFrame::windowMenu() {
  const auto several = [this] { return tabs_->GetPageCount() > 1; };
  Action documents{"documents", "&Go to window", "", "", nullptr};
  documents.entries = [this] { return documentActions(); };
  documents.enabled = [this] { return tabs_->active() != nullptr; };
  return {"&Window",
          {{"next-window", "&Next", "Ctrl+F6", "", [this] { tabs_->activateNeighbour(1); }, several},
           {"previous-window", "&Previous", "Ctrl+Shift+F6", "", [this] { tabs_->activateNeighbour(-1); },
            several},
           kSeparator,
           documents}};
}

std::vector<Action> MainFrame::documentActions() {
  std::vector<Action> actions;
  for (CPlumettaDoc* doc : tabs_->documents()) {
    Action action{"", escaped(fromWx(markedTitle(*doc))), "", "", [this, doc] { tabs_->activate(*doc); }};
    action.checked = [this, doc] { return tabs_->active() == doc; };
    actions.push_back(action);
  }
  return actions;
}

MenuPlan MainFrame::helpMenu() {
  return {"&Help",
          {{"shortcuts", "&Keyboard shortcuts…", "F1", "The keys of all actions, and other ones for them",
            [this] { editShortcuts(); }},
           {"update-check", "Check for &updates…", "", "Ask the update server for the newest version",
            [this] { updates_.ask(); }, [this] { return !updates_.asking(); }},
           {"about", "&About Plumetta", "", "", [this] { showAbout(); }}}};
}

void MainFrame::showAbout() {
  wxAboutDialogInfo info;
  info.SetName("Plumetta");
  info.SetVersion(kVersion, wxString("Version ") + kVersion);
  info.SetDescription("An audio editor.\n\nLicence: GPL-3.0-or-later\nBuilt with " wxVERSION_STRING);
  info.SetIcon(programMark(wxSize(64, 64)).GetIcon(FromDIP(wxSize(64, 64))));
  wxGenericAboutBox(info, this);
}

}  // namespace plumetta
