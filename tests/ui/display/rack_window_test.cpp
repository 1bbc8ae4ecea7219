// SPDX-License-Identifier: GPL-3.0-or-later
// The rack's window on a display: what its list and buttons do to the rack, and in which order editors close.
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/frame.h>
#include <wx/init.h>

#include "support/recording_prompter.h"
#include "support/temporary_folder.h"
#include "support/test_plugins.h"
#include "ui/rack_dialog.h"

namespace plumetta {
namespace {

class RackWindow : public testing::Test {
 protected:
  RackWindow() {
    window.onApply = [this] { ++applied; };
    window.Show();
    settle();
  }
  ~RackWindow() override { window.Hide(); }

  void settle() {
    for (int i = 0; i < 20; ++i) wxTheApp->Yield(true);
  }
  wxButton& button(const wxString& label) {
    for (wxWindow* child : window.GetChildren()) {
      auto* found = dynamic_cast<wxButton*>(child);
      if (found != nullptr && found->GetLabelText() == label) return *found;
    }
    throw std::logic_error("no button " + label.ToStdString());
  }
  void press(const wxString& label) {
    wxButton& pressed = button(label);
    ASSERT_TRUE(pressed.IsEnabled()) << label;
    wxCommandEvent event(wxEVT_BUTTON, pressed.GetId());
    event.SetEventObject(&pressed);
    pressed.ProcessWindowEvent(event);
  }
  template <class Kind>
  Kind& child() {
    for (wxWindow* each : window.GetChildren()) {
      if (auto* found = dynamic_cast<Kind*>(each)) return *found;
    }
    throw std::logic_error("no such child");
  }
  void select(int position) {
    auto& list = child<PositionList>();
    list.SetSelection(position);
    wxCommandEvent event(wxEVT_LISTBOX, list.GetId());
    list.ProcessWindowEvent(event);
  }
  CVSTDlg* editorWindow() {
    for (wxWindow* each : wxTopLevelWindows) {
      if (auto* editor = dynamic_cast<CVSTDlg*>(each)) return editor;
    }
    return nullptr;
  }

  TemporaryFolder folder;
  RecordingPrompter prompter;
  Application app{prompter, nativeFileSystem(), folder.file("home")};
  Rack& rack = app.rack();
  WindowProfile profile{app};
  wxFrame frame{nullptr, wxID_ANY, "Frame"};
  PluginEditors editors{frame, rack};
  CVSTRackDlg window{&frame, app, profile, editors, [this] { return mayChange; }};
  bool mayChange = true;
  int applied = 0;
};

TEST_F(RackWindow, ShowsWhatTheRackHoldsAndActsOnTheSelectedPosition) {
  for (const char* label : {"Editor", "Up", "Down", "Mute", "Remove", "Clear", "Apply", "Save chain…"}) {
    EXPECT_FALSE(button(wxString::FromUTF8(label)).IsEnabled()) << label;
  }
  rack.add(testPlugin("bank"));
  rack.add(testPlugin("gain"));
  select(0);
  EXPECT_EQ(child<ProgramTable>().GetItemCount(), rack.pluginAt(0)->programCount());
  EXPECT_EQ(child<ParameterTable>().GetItemCount(), 3);
  press("Mute");
  EXPECT_TRUE(rack.isMuted(0));
  EXPECT_FALSE(rack.isMuted(1));
  press("Unmute");
  EXPECT_FALSE(rack.isMuted(0));
  press("Down");
  EXPECT_EQ(rack.pluginAt(1)->displayName(), "Test bank") << "the selection goes along";
  press("Down");
  EXPECT_EQ(rack.pluginAt(2)->displayName(), "Test bank");
  EXPECT_FALSE(rack.occupied(1)) << "a hole";
  press("Remove");
  EXPECT_FALSE(rack.occupied(2));
  EXPECT_FALSE(button("Remove").IsEnabled()) << "the next line is selected";
  mayChange = false;
  press("Clear");
  EXPECT_TRUE(rack.occupied(0));
  mayChange = true;
  press("Clear");
  EXPECT_TRUE(rack.isEmpty());
  EXPECT_TRUE(prompter.messages.empty());
}

TEST_F(RackWindow, ChoosesProgramsAndMovesParameters) {
  rack.add(testPlugin("bank"));
  select(0);
  child<ProgramTable>().Select(2);
  settle();
  EXPECT_EQ(rack.programOf(0), 2);
  child<ParameterTable>().Select(1);
  settle();
  auto& slider = child<wxSlider>();
  slider.SetValue(750);
  wxCommandEvent event(wxEVT_SLIDER, slider.GetId());
  slider.ProcessWindowEvent(event);
  EXPECT_EQ(rack.pluginAt(0)->parameter(1), 0.75f);
  EXPECT_NE(rack.pluginAt(0)->parameter(0), 0.75f);
}

TEST_F(RackWindow, ClosesAnEditorBeforeItsPlugInAndEveryEditorWithItself) {
  SharedLibrary library;  // so that the journal outlives the plug-in
  library.open(testPlugin("editor"));
  rack.add(testPlugin("editor"));
  ASSERT_NE(editorWindow(), nullptr);
  EXPECT_EQ(editorWindow()->GetClientSize(), wxSize(330, 210));
  select(0);
  takeJournal("editor");
  window.Close();
  settle();
  EXPECT_EQ(takeJournal("editor"), "15") << "without closing the plug-in";
  EXPECT_EQ(editorWindow(), nullptr);
  window.Show();
  press("Editor");
  EXPECT_NE(editorWindow(), nullptr);
  takeJournal("editor");
  press("Remove");
  settle();
  EXPECT_EQ(takeJournal("editor"), "15 12:0 1");
  EXPECT_EQ(editorWindow(), nullptr);
  rack.add(testPlugin("gain"));
  select(0);
  press("Editor");
  ASSERT_EQ(prompter.messages.size(), 1u);
  EXPECT_EQ(prompter.messages[0], "No VST GUI");
}

TEST_F(RackWindow, AppliesOnlyWhereThereIsSomethingToApplyItTo) {
  rack.add(testPlugin("gain"));
  select(0);
  EXPECT_FALSE(button("Apply").IsEnabled()) << "no document";
  app.newDocument(44100, 2, 16, 1000, kFormatPcm);
  select(0);
  press("Apply");
  EXPECT_EQ(applied, 1);
}

}  // namespace
}  // namespace plumetta

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
  wxApp::SetInstance(new wxApp);  // the toolkit deletes it
  const wxInitializer toolkit(argc, argv);
  if (!toolkit.IsOk()) return 77;
  wxTheApp->SetExitOnFrameDelete(false);
  return RUN_ALL_TESTS();
}
