// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <wx/app.h>

#include <memory>
#include <string>
#include <vector>

#include "app/application.h"
#include "app/skin.h"
#include "ui/system_clipboard.h"
#include "ui/window_prompter.h"

namespace plumetta {

// The program: `plumetta [--home DIR] [FILE...]`.
class PlumettaApp : public wxApp {
 public:
  Skin skin;  // that all windows wear; `wearSkin` changes it

  // Before the toolkit's own start, which a process that looks at plug-ins does without.
  bool Initialize(int& argc, wxChar** argv) override;
  bool OnInit() override;
  int OnExit() override;
  void OnInitCmdLine(wxCmdLineParser& parser) override;
  bool OnCmdLineParsed(wxCmdLineParser& parser) override;

 private:
  std::string home_;
  std::vector<std::string> files_;
  WindowPrompter prompter_;
  DesktopClipboard clipboard_;
  std::unique_ptr<Application> application_;
};

// The one that runs.
PlumettaApp& editorApp();

}  // namespace plumetta
