// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/frame.h>
#include <wx/simplebook.h>
#include <wx/splitter.h>
#include <wx/stopwatch.h>

#include <string>
#include <vector>

#include "app/application.h"
#include "doc/command.h"
#include "ui/action_menus.h"
#include "ui/document_tabs.h"
#include "ui/file_commands.h"
#include "ui/focus_round.h"
#include "ui/history_pane.h"
#include "ui/live_displays.h"
#include "ui/rack_dialog.h"
#include "ui/recent_files.h"
#include "ui/skin_menu.h"
#include "ui/sonogram_dialog.h"
#include "ui/sound_control.h"
#include "ui/spectrum_dialog.h"
#include "ui/start_page.h"
#include "ui/status_line.h"
#include "ui/surface_dialog.h"
#include "ui/transport_bar.h"
#include "ui/update_watch.h"
#include "ui/vst_editor_window.h"
#include "ui/window_place.h"
#include "ui/window_profile.h"
#include "ui/window_prompter.h"

namespace plumetta {

// The main window: menus, toolbar and status line around the documents, or around the start page when none is
// open.
class MainFrame : public wxFrame {
 public:
  MainFrame(Application& app, WindowPrompter& prompter);
  ~MainFrame() override;

  // At start: the files that were named, or those of last time, and then the MIDI inputs.
  void begin(const std::vector<std::string>& paths);

 private:
  // The rows of each menu (window_actions.cpp, and command_menus.cpp for those of the command table).
  std::vector<MenuPlan> menuPlan();
  MenuPlan fileMenu();
  MenuPlan editMenu();
  MenuPlan viewMenu();
  MenuPlan processMenu();
  MenuPlan channelMenu();
  MenuPlan markerMenu();
  MenuPlan transportMenu();  // transport_actions.cpp
  MenuPlan windowMenu();
  MenuPlan helpMenu();
  // The rows that the command table has for a menu.
  std::vector<Action> commandActions(Menu menu);
  // The named ones in this order, "" for a separator.
  std::vector<Action> groupedActions(Menu menu, const std::vector<std::string>& ids);
  Action commandAction(const Command& command);
  std::vector<Action> recentActions();
  void processFolder();
  std::vector<Action> documentActions();
  // A row that needs a document, and one that does something with its view.
  Action documentAction(const char* id, const char* text, const char* key, const char* help,
                        std::function<void(CPlumettaDoc&)> run);
  Action viewAction(const char* id, const char* text, const char* key, const char* help,
                    void (DocumentPanel::*run)());

  // Multiplies the selection's length, or divides it.
  Action selectionAction(const char* id, const char* text, const char* key, const char* help, bool shorten);

  void runWithParameters(CPlumettaDoc& doc, const Command& command);
  void insertSilence(CPlumettaDoc& doc);
  void addMarker(CPlumettaDoc& doc);
  void goTo(CPlumettaDoc& doc);
  void editPreferences();
  void configureMidi();
  void configureAudio();
  void configureRouting();
  // What a settings dialog or a window has changed takes effect and is stored.
  void applySettings();
  // Keys of actions (key_actions.cpp). The first reads their file and returns what is wrong with it.
  std::vector<std::string> startShortcuts();
  void tellKeyProblems();
  void editShortcuts();
  // Remote control and media keys (remote_actions.cpp).
  void startRemote();
  void onRemote(RemoteCommand command);
  // Those that take keys: the document in front, the history, the volume.
  std::vector<wxWindow*> parts() const;
  void onMediaKey(wxKeyEvent& event);
  void scaleSelection(CPlumettaDoc& doc, double factor);
  // To the next marker, or the one before, of the cursor.
  void goToMarker(CPlumettaDoc& doc, bool forward);
  void showStatistics(CPlumettaDoc& doc);
  void showTempo(CPlumettaDoc& doc);
  // A window of this kind comes to the front; made when it is first asked for.
  template <class Dialog, class... Arguments>
  void showAnalysis(Dialog*& dialog, Arguments&... arguments);
  void showSpectrum();
  void showSonogram();
  void show3DSpectrum();
  void showAbout();

  // The rack (rack_actions.cpp).
  std::vector<Action> rackActions();
  void showRack();
  void switchRack();
  void applyRack(CPlumettaDoc& doc);
  void watchCopies();
  void openLeftCopies();

  void buildToolBar();
  // Documents and what stands beside and below them.
  void layOut();
  void buildStatusLine();
  void showTransportBar(bool show);
  // Title, buttons and status line follow what goes on at the devices.
  void followSound();
  void showToolBar(bool show);
  // The history beside the documents, if it is wanted and there is a document.
  void showHistory();
  void storeHistoryWidth();
  void goInHistory(size_t steps);
  void showStatus();
  void showTitle();
  void acceptFiles(wxWindow& window);
  void onActivated();
  void onClose(wxCloseEvent& event);

  Application& app_;
  WindowPrompter& prompter_;
  WindowProfile profile_;
  RecentFiles recent_;
  LiveDisplays* displays_;
  wxSplitterWindow* sides_;
  wxSimplebook* pages_;
  StartPage* startPage_;
  DocumentTabs* tabs_;
  HistoryPane* history_;
  bool historyWanted_;
  FileCommands files_;
  SkinMenu skins_;
  SoundControl sound_;
  UpdateWatch updates_;
  ActionMenus menus_;
  Shortcuts shortcuts_{{}};               // of the menus, once these are built
  std::vector<std::string> keyProblems_;  // of the file of shortcuts, until they have been told
  WindowPlace place_;
  FocusRound focusRound_;
  PluginEditors editors_;
  wxColour toolColour_;
  wxTimer copyTimer_;
  wxStopWatch sinceRefresh_;
  TransportBar* transportBar_ = nullptr;  // once the menus are built
  CSpectrumDlg* spectrum_ = nullptr;      // made when it is first asked for
  CSonogramDlg* sonogram_ = nullptr;      // likewise
  C3DSpectrumDlg* surface_ = nullptr;
  std::vector<AnalysisDlg*> analyses_;
  CVSTRackDlg* rackWindow_ = nullptr;  // likewise
};

}  // namespace plumetta
