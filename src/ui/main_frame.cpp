// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/main_frame.h"

#include <wx/dnd.h>
#include <wx/settings.h>
#include <wx/toolbar.h>

#include <algorithm>

#include "ui/text.h"
#include "ui/toolbar_icons.h"

namespace plumetta {
namespace {

constexpr const char* kWindow = "Window";
constexpr const char* kProgram = "Plumetta";
constexpr int kHistoryWidth = 184;
constexpr int kNarrowestHistory = 120;
constexpr int kRefreshMilliseconds = 100;

enum Page { kStartPage, kDocuments };

// Groups of actions; an empty name stands for the gap between two.
constexpr const char* kTools[] = {
    "new",    "open", "save", "",        "undo",     "redo",           "",        "cut", "copy", "paste",
    "delete", "trim", "",     "zoom-in", "zoom-out", "zoom-selection", "zoom-all"};

class FileDrop : public wxFileDropTarget {
 public:
  explicit FileDrop(std::function<void(const wxArrayString&)> onFiles) : onFiles_(std::move(onFiles)) {}
  bool OnDropFiles(wxCoord, wxCoord, const wxArrayString& files) override {
    onFiles_(files);
    return true;
  }

 private:
  std::function<void(const wxArrayString&)> onFiles_;
};

}  // namespace

MainFrame::MainFrame(Application& app, WindowPrompter& prompter)
    : wxFrame(nullptr, wxID_ANY, kProgram),
      app_(app),
      prompter_(prompter),
      profile_(app),
      recent_(profile_, app.settings().files.recentFiles),
      displays_(new LiveDisplays(this, app, profile_)),
      sides_(new wxSplitterWindow(displays_, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                  wxSP_LIVE_UPDATE | wxSP_NOBORDER | wxSP_THIN_SASH)),
      pages_(new wxSimplebook(sides_)),
      startPage_(new StartPage(pages_)),
      tabs_(new DocumentTabs(pages_, app.settings().display)),
      history_(new HistoryPane(sides_)),
      historyWanted_(profile_.integer(kWindow, "History", 0) != 0),
      files_(*this, app, *tabs_, profile_, recent_),
      skins_(*this, app, profile_),
      sound_(app, *tabs_, prompter),
      updates_(app, prompter),
      menus_(*this, [this] { return !prompter_.working(); }),
      place_(*this, profile_),
      focusRound_(*this, [this] { return parts(); }),
      editors_(*this, app.rack()) {
  SetIcons(programIcons());
  pages_->AddPage(startPage_, wxString());
  pages_->AddPage(tabs_, wxString());
  sides_->SetSashGravity(1.0);
  sides_->SetMinimumPaneSize(FromDIP(kNarrowestHistory));
  history_->Hide();
  displays_->restingTime = [this]() -> std::optional<PlayTime> {
    const CPlumettaDoc* doc = tabs_->active();
    if (doc == nullptr) return std::nullopt;
    return PlayTime{static_cast<double>(doc->view().cursor), doc->wave().sampleRate()};
  };
  displays_->inputRuns = [this] { return sound_.recorder().busy(); };
  displays_->takeInputPeak = [this](int channel) { return sound_.takeInputPeak(channel); };
  displays_->surround(*sides_);
  place_.restore();
  sides_->Initialize(pages_);
  buildStatusLine();
  menus_.build(menuPlan());
  for (const char* key : {"Ctrl+=", "Ctrl+Shift+=", "Ctrl+Shift++", "Ctrl+KP_Add"})
    menus_.addKey(key, "zoom-in");
  menus_.addKey("Ctrl+KP_Subtract", "zoom-out");
  menus_.addKey("Ctrl+Shift+Z", "redo");
  menus_.shareKey("play", "stop");  // which is possible only while "play" would begin anew
  menus_.addKey("Ctrl+Tab", "next-window");
  menus_.addKey("Ctrl+Shift+Tab", "previous-window");
  keyProblems_ = startShortcuts();
  if (profile_.integer(kWindow, "Toolbar", 1) != 0) buildToolBar();
  layOut();

  startPage_->onOpen = [this] { files_.open(); };
  startPage_->onNew = [this] { files_.createNew(); };
  startPage_->onRecent = [this](const std::string& path) { files_.openRecent(path); };
  recent_.onChanged = [this] {
    menus_.refill("recent");
    startPage_->setRecent(recent_.paths());
  };
  startPage_->setRecent(recent_.paths());
  // The entry that has been chosen must not go while its menu still speaks of it.
  skins_.onChanged = [this] { CallAfter([this] { menus_.refill("skin"); }); };
  tabs_->onActivated = [this] { onActivated(); };
  tabs_->onTitleChanged = [this] {
    showTitle();
    menus_.refill("documents");
  };
  tabs_->onStatusChanged = [this] { showStatus(); };
  tabs_->onSettingsChanged = [this] { applySettings(); };
  tabs_->onCloseWanted = [this](CPlumettaDoc& doc) {
    if (!prompter_.working()) files_.close(doc);
  };
  sound_.onChanged = [this] { followSound(); };
  history_->onChosen = [this](size_t steps) { goInHistory(steps); };
  sides_->Bind(wxEVT_SPLITTER_DOUBLECLICKED, [](wxSplitterEvent& event) { event.Veto(); });
  prompter_.setParent(this);
  prompter_.asksOfLosses = &app_.settings().files.askOfLosses;
  prompter_.onLossesSilenced = [this] { app_.saveSettings(); };
  prompter_.onStatus = [this](const wxString& text) { SetStatusText(text, StatusLine::kMessage); };
  for (wxWindow* window :
       {static_cast<wxWindow*>(this), static_cast<wxWindow*>(startPage_), static_cast<wxWindow*>(tabs_)}) {
    acceptFiles(*window);
  }
  Bind(wxEVT_CHAR_HOOK, &MainFrame::onMediaKey, this);
  Bind(wxEVT_CLOSE_WINDOW, &MainFrame::onClose, this);
  SetExtraStyle(GetExtraStyle() | wxWS_EX_PROCESS_IDLE);
  Bind(wxEVT_IDLE, [this](wxIdleEvent& event) {
    // While a play cursor runs, the next idle time is near, and buttons need not follow at each.
    if (!sound_.following() || sinceRefresh_.Time() >= kRefreshMilliseconds) {
      sinceRefresh_.Start();
      menus_.refresh();
      transportBar_->follow(sound_.recorder().buttonMarked());
    }
    if (sides_->IsSplit() && !prompter_.working()) history_->follow(tabs_->active());
    for (AnalysisDlg* analysis : analyses_) {
      const bool watched = analysis->IsShown() && !prompter_.working();
      if (watched && analysis->follow(tabs_->activePanel())) event.RequestMore();
    }
    event.Skip();
  });
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    if (GetToolBar() != nullptr && toolColour_ != wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT)) {
      buildToolBar();
    }
    event.Skip();
  });
  onActivated();
  followSound();
}

MainFrame::~MainFrame() {
  app_.midi().closeAll();
  prompter_.setParent(nullptr);
  prompter_.onStatus = nullptr;
  prompter_.onLossesSilenced = nullptr;
}

void MainFrame::begin(const std::vector<std::string>& paths) {
  tellKeyProblems();
  openLeftCopies();
  paths.empty() ? files_.reopenFiles() : files_.openPaths(paths);
  startRemote();
  sound_.offerRecovery();
  watchCopies();
  updates_.askAtStart();
}

void MainFrame::applySettings() {
  app_.applyPlaybackSettings();
  app_.vstHost().setTempo(static_cast<float>(app_.settings().plugins.tempo));
  app_.saveSettings();
  recent_.followSettings();
  tabs_->followSettings();
  showStatus();
}

void MainFrame::acceptFiles(wxWindow& window) {
  window.SetDropTarget(new FileDrop([this](const wxArrayString& files) {
    std::vector<std::string> paths;
    for (const wxString& file : files) paths.push_back(fromWx(file));
    // The program that the files come from waits until the drop is over.
    CallAfter([this, paths] {
      Raise();
      if (!prompter_.working()) files_.openPaths(paths);
    });
  }));
}

// ---- Toolbar and status line ----------------------------------------------------------------------------

void MainFrame::buildToolBar() {
  if (wxToolBar* old = GetToolBar()) {
    SetToolBar(nullptr);
    old->Destroy();
  }
  wxToolBar* bar = CreateToolBar(wxTB_FLAT | wxTB_HORIZONTAL | wxTB_NODIVIDER);
  const wxSize size(20, 20);
  bar->SetToolBitmapSize(FromDIP(size));
  toolColour_ = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT);
  for (const std::string id : kTools) {
    if (id.empty()) {
      bar->AddSeparator();
      continue;
    }
    const Action& action = menus_.action(id);
    bar->AddTool(menus_.numberOf(id), toWx(plainText(action)), toolbarIcon(id, toolColour_, size),
                 wxNullBitmap, wxITEM_NORMAL, toolHint(action), toWx(action.help));
    if (action.enabled) bar->EnableTool(menus_.numberOf(id), action.enabled());
  }
  bar->Realize();
}

void MainFrame::showToolBar(bool show) {
  profile_.setInteger(kWindow, "Toolbar", show ? 1 : 0);
  if (show) {
    buildToolBar();
  } else if (wxToolBar* bar = GetToolBar()) {
    SetToolBar(nullptr);
    bar->Destroy();
  }
  SendSizeEvent();
}

void MainFrame::layOut() {
  transportBar_ = new TransportBar(this, menus_, app_.generalVolume());
  auto* rows = new wxBoxSizer(wxVERTICAL);
  rows->Add(displays_, 1, wxEXPAND);
  rows->Add(transportBar_, 0, wxEXPAND);
  SetSizer(rows);
  transportBar_->Hide();
  // A window that is just opening has not got its size yet, and some toolkits complain of buttons without
  // room.
  CallAfter([this] {
    transportBar_->Show(profile_.integer(kWindow, "Transport", 1) != 0);
    Layout();
  });
}

void MainFrame::showTransportBar(bool show) {
  profile_.setInteger(kWindow, "Transport", show ? 1 : 0);
  transportBar_->Show(show);
  Layout();
}

void MainFrame::buildStatusLine() {
  auto* line = new StatusLine(this);
  SetStatusBar(line);
  line->Show(profile_.integer(kWindow, "Status bar", 1) != 0);
}

void MainFrame::showStatus() {
  const DocumentPanel* panel = tabs_->activePanel();
  SetStatusText(panel != nullptr ? panel->statusFormat() : wxString(), StatusLine::kFormat);
  SetStatusText(panel != nullptr ? panel->statusLength() : wxString(), StatusLine::kLength);
  SetStatusText(panel != nullptr ? panel->statusCursor() : wxString(), StatusLine::kCursor);
  SetStatusText(panel != nullptr ? panel->statusSelection() : wxString(), StatusLine::kSelection);
}

std::vector<wxWindow*> MainFrame::parts() const {
  std::vector<wxWindow*> parts;
  if (DocumentPanel* panel = tabs_->activePanel()) parts.push_back(panel);
  if (history_->IsShownOnScreen()) parts.push_back(history_);
  if (transportBar_->IsShownOnScreen()) parts.push_back(&transportBar_->volume());
  return parts;
}

// ---- History --------------------------------------------------------------------------------------------

void MainFrame::showHistory() {
  const bool show = historyWanted_ && tabs_->active() != nullptr;
  if (show && !sides_->IsSplit()) {
    const int stored = profile_.integer(kWindow, "History width", kHistoryWidth);
    history_->Show();
    sides_->SplitVertically(pages_, history_, -FromDIP(std::max(stored, kNarrowestHistory)));
  } else if (!show && sides_->IsSplit()) {
    storeHistoryWidth();
    sides_->Unsplit(history_);
  }
  if (show) history_->show(tabs_->active());
}

void MainFrame::storeHistoryWidth() {
  if (sides_->IsSplit()) profile_.setInteger(kWindow, "History width", ToDIP(history_->GetSize().x));
}

void MainFrame::goInHistory(size_t steps) {
  CPlumettaDoc* doc = tabs_->active();
  if (doc == nullptr || prompter_.working()) return;
  prompter_.status("");
  const BusyScope busy(prompter_);  // one wait cursor for all; views are drawn once the last step is done
  CommandOutcome outcome = CommandOutcome::done;
  while (outcome == CommandOutcome::done && doc->journal().undoCount() > steps) {
    outcome = runCommand(*doc, *findCommand("undo"));
  }
  while (outcome == CommandOutcome::done && doc->journal().undoCount() < steps && doc->journal().canRedo()) {
    outcome = runCommand(*doc, *findCommand("redo"));
  }
  history_->show(doc);
  menus_.refresh();
}

// ---- What stands in front -------------------------------------------------------------------------------

void MainFrame::showTitle() {
  const CPlumettaDoc* doc = tabs_->active();
  wxString title = toWx(sound_.recorder().blinkTitle());
  if (title.empty()) title = doc != nullptr ? markedTitle(*doc) + toWx(" – ") + kProgram : wxString(kProgram);
  if (title != GetTitle()) SetTitle(title);
}

void MainFrame::onActivated() {
  const Page page = tabs_->active() != nullptr ? kDocuments : kStartPage;
  if (pages_->GetSelection() != page) pages_->ChangeSelection(page);
  if (DocumentPanel* panel = tabs_->activePanel(); panel != nullptr && panel->GetDropTarget() == nullptr) {
    acceptFiles(*panel);
  }
  // A window that is just opening has not got its size yet.
  CallAfter(&MainFrame::showHistory);
  showTitle();
  showStatus();
  menus_.refill("documents");
  menus_.refresh();
}

void MainFrame::onClose(wxCloseEvent& event) {
  files_.storeOpenFiles();
  const bool mayGo = !prompter_.working() && sound_.confirmClose() && files_.closeAll();
  if (!mayGo && event.CanVeto()) {
    event.Veto();
    sound_.stayedOpen();
    return;
  }
  sound_.shutDown();
  updates_.stop();
  app_.midi().closeAll();
  if (app_.rememberVolume()) app_.saveSettings();
  place_.store();
  for (AnalysisDlg* analysis : analyses_) {
    if (analysis->IsShown()) analysis->storePlace();
  }
  if (rackWindow_ != nullptr) rackWindow_->Show(false);
  app_.rack().closeAllEditors();
  copyTimer_.Stop();
  app_.chainCopy().forget();
  storeHistoryWidth();
  displays_->storeLayout();
  // Without a veto the documents end with their windows, which look at them to the last.
  for (CPlumettaDoc* doc : tabs_->documents()) tabs_->remove(*doc);
  Destroy();
}

}  // namespace plumetta
