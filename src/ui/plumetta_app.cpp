// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/plumetta_app.h"

#include <wx/cmdline.h>

#include <clocale>
#include <cstdlib>
#include <utility>

#include "app/skin_files.h"
#include "platform/file_system.h"
#include "ui/main_frame.h"
#include "ui/text.h"
#include "vst/plugin_probe.h"

namespace plumetta {
namespace {

// In a locale of single bytes the toolkit takes arguments for Latin-1 that are UTF-8 all the same; which of
// the two is there on the disk decides.
std::string pathOf(const wxString& argument) {
  const std::string asGiven = fromWx(argument);
  const std::string bytes(argument.mb_str(wxConvISO8859_1));
  FileSystem& files = nativeFileSystem();
  const bool misread =
      files.kind(asGiven) == FileKind::missing && !bytes.empty() && files.kind(bytes) != FileKind::missing;
  return misread ? bytes : asGiven;
}

}  // namespace

PlumettaApp& editorApp() { return *static_cast<PlumettaApp*>(wxAppConsole::GetInstance()); }

bool PlumettaApp::Initialize(int& count, wxChar** words) {
  if (count > 1 && wxString(words[1]) == kProbeSwitch) {
    std::vector<std::string> rest;
    for (int i = 2; i < count; ++i) rest.push_back(pathOf(wxString(words[i])));
    std::_Exit(runPluginProbe(rest));
  }
  return wxApp::Initialize(count, words);
}

void PlumettaApp::OnInitCmdLine(wxCmdLineParser& parser) {
  wxApp::OnInitCmdLine(parser);
  parser.AddOption("", "home", "the folder of settings, lists and undo files; made when missing",
                   wxCMD_LINE_VAL_STRING);
  parser.AddParam("FILE", wxCMD_LINE_VAL_STRING, wxCMD_LINE_PARAM_OPTIONAL | wxCMD_LINE_PARAM_MULTIPLE);
}

bool PlumettaApp::OnCmdLineParsed(wxCmdLineParser& parser) {
  wxString home;
  if (parser.Found("home", &home)) home_ = pathOf(home);
  for (size_t i = 0; i < parser.GetParamCount(); ++i) files_.push_back(pathOf(parser.GetParam(i)));
  return wxApp::OnCmdLineParsed(parser);
}

bool PlumettaApp::OnInit() {
  SetAppName("plumetta");
  SetAppDisplayName("Plumetta");
  if (!wxApp::OnInit()) return false;
  // The toolkit has taken over the person's locale. Numbers that the program itself writes and reads, in
  // files and settings, keep their decimal point all the same.
  std::setlocale(LC_NUMERIC, "C");
  // The play cursor wakes the window sixty times a second: only what asks for it hears of each time.
  wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
  wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
  application_ = std::make_unique<Application>(prompter_, nativeFileSystem(), home_);
  application_->setSystemClipboard(&clipboard_);
  FileSystem& files = nativeFileSystem();
  const std::string& skinSetting = application_->settings().program.skinFile;
  skin = readSkin(files, chosenSkinPath(files, application_->homeFolder(), skinSetting)).skin;
  auto* frame = new MainFrame(*application_, prompter_);
  // Some toolkits show a window later than they are told to. A progress that came first would lie behind it.
  frame->Bind(wxEVT_SHOW, [this, frame, begun = false](wxShowEvent& event) mutable {
    event.Skip();
    if (!std::exchange(begun, true)) CallAfter([frame, files = files_] { frame->begin(files); });
  });
  frame->Show();
  // Once the event loop runs, so that the window is there while long files are read.
  return true;
}

int PlumettaApp::OnExit() {
  application_.reset();
  clipboard_.leaveContent();
  return wxApp::OnExit();
}

}  // namespace plumetta
