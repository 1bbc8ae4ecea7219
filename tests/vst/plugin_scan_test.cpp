// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/plugin_scan.h"

#include <gtest/gtest.h>

#include "platform/child_process.h"
#include "platform/file_identity.h"
#include "platform/private_profile.h"
#include "support/temporary_folder.h"
#include "support/test_plugins.h"

namespace plumetta {
namespace {

// A folder of plug-ins, and the list beside it.
class PluginScanning : public testing::Test {
 protected:
  void put(const std::string& plugin, const std::string& name) {
    std::filesystem::copy_file(testPlugin(plugin), plugins.file(name));
  }
  PluginScan scanning(ScanOptions options = {}) {
    if (options.folder.empty()) options.folder = plugins.path();
    return {nativeFileSystem(),
            {home.file("plumetta.vst"), home.file("skipped"), ownExecutable(), limit},
            options};
  }
  std::vector<std::string> listed() const {
    std::vector<std::string> names;
    for (const PluginDescription& plugin : PluginListFile(home.file("plumetta.vst")).load()) {
      names.push_back(plugin.displayName());
    }
    return names;
  }
  std::string stored(const std::string& section, const std::string& key) const {
    return readProfileString(home.file("plumetta.vst"), section, key, "?");
  }

  TemporaryFolder plugins, home;
  std::chrono::milliseconds limit = std::chrono::minutes(2);  // a busy machine starts processes late
};

TEST_F(PluginScanning, ListsEffectsAndAppends) {
  put("bank", "b.dll");
  put("gain", "c.xDLLx");
  put("synth", "d.dll");
  put("gain", "e.Dll");
  put("gain", "f.dll.bak");
  put("gain", "dll");
  std::filesystem::create_directories(plugins.file("g.dll"));
  std::filesystem::create_directories(plugins.file("sub"));
  put("delay", "sub/deep.mydll");
  writeBytes(plugins.file("a.dll"), "no library");
  std::error_code withoutLinks;
  std::filesystem::create_directory_symlink("..", plugins.file("sub/loop"), withoutLinks);
  PluginScan scan = scanning();
  scan.run();
  EXPECT_EQ(scan.summary(), "3 plugs detected in " + plugins.path());
  EXPECT_EQ(listed(), (std::vector<std::string>{"Test bank (b.dll)", "Test gain (c.xDLLx)",
                                                "Test delay (deep.mydll)"}));
  EXPECT_EQ(stored("Total", "Counter"), "3");
  const std::pair<const char*, std::string> expected[] = {{"Path", realPath(plugins.file("b.dll"))},
                                                          {"Vendor string", "Plumetta tests"},
                                                          {"Product string", "Test bank product"},
                                                          {"VST SDK Version", "2400"},
                                                          {"Plug Version", "7"},
                                                          {"IsSynth", "0"},
                                                          {"Input number", "2"},
                                                          {"Output number", "2"},
                                                          {"Parameter number", "3"},
                                                          {"Program number", "4"},
                                                          {"UID", "PtBk"},
                                                          {"Editor GUI", "0"}};
  for (const auto& [key, value] : expected) EXPECT_EQ(stored("Plug000", key), value);
  PluginScan more =
      scanning({.folder = plugins.path(), .recurse = false, .instruments = true, .append = true});
  more.run();
  EXPECT_EQ(more.count(), 6);
  EXPECT_EQ(stored("Plug005", "IsSynth"), "1");
  PluginScan missing = scanning({.folder = plugins.file("nowhere")});
  missing.run();
  EXPECT_FALSE(missing.failure().empty());
  EXPECT_EQ(listed().size(), 6U) << "a folder that isn't there costs nobody the list";
}

TEST_F(PluginScanning, SurvivesWhatCrashesAndHangs) {
  for (const char* name : {"a.dll", "c.dll", "e.dll"}) put("gain", name);
  put("misbehaving", "b.dll");
  for (const char* fault : {"crash-entry", "crash-open", "crash-close"}) {
    chooseFault(fault);
    PluginScan scan = scanning({.again = true});
    scan.run();
    EXPECT_EQ(scan.count(), 3) << fault;
    ASSERT_EQ(scan.newlySkipped().size(), 1U) << fault;
    EXPECT_EQ(fileNameOf(scan.newlySkipped()[0].path), "b.dll");
  }
  chooseFault("hang-entry");
  limit = std::chrono::milliseconds(300);
  PluginScan hung = scanning({.onlyLibrary = plugins.file("b.dll")});
  hung.run();
  EXPECT_EQ(hung.newlySkipped().size(), 1U);
  limit = std::chrono::minutes(2);
  chooseFault("none");
  PluginScan remembers = scanning();
  remembers.run();
  EXPECT_EQ(remembers.count(), 3) << "it was skipped before, and nothing about it has changed";
  PluginScan again = scanning({.onlyLibrary = plugins.file("b.dll")});
  again.run();
  EXPECT_EQ(again.count(), 4);
  EXPECT_TRUE(SkippedPlugins(nativeFileSystem(), home.file("skipped")).all().empty());
}

TEST_F(PluginScanning, StopsAtOnce) {
  chooseFault("hang-entry");
  put("misbehaving", "a.dll");
  PluginScan scan = scanning();
  scan.start();
  while (scan.currentPath().empty()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_EQ(fileNameOf(scan.currentPath()), "a.dll");
  scan.stop();
  while (scan.running()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_TRUE(scan.newlySkipped().empty());
  chooseFault("none");
}

TEST(PluginList, BelievesNoCounter) {
  const TemporaryFolder folder;
  const PluginListFile list(folder.file("plumetta.vst"));
  EXPECT_TRUE(list.load().empty());
  writeBytes(list.path(),
             "[Total]\r\nCounter=2000000000\r\n[Plug001]\r\nPath=x.dll\r\n[Plug-1]\r\nPath=no\r\n"
             "[Plug000]\r\nIsSynth=1\r\nEffect name=\r\nPath=y.dll\r\n[plug0002]\r\nPath=no\r\n");
  const auto plugins = list.load();
  ASSERT_EQ(plugins.size(), 2U);
  EXPECT_TRUE(plugins[0].isSynth());
  EXPECT_EQ(plugins[0].displayName(), "y.dll");
  EXPECT_EQ(plugins[1].effectName, "None");
  EXPECT_FALSE(plugins[1].isSynth());
  PluginDescription odd;
  odd.path = "z.dll";
  odd.effectName = " [Total]\nCounter=9 ";
  EXPECT_TRUE(list.append(2, odd));
  EXPECT_EQ(list.counter(), 3);
  EXPECT_EQ(list.load()[2].effectName, " [Total] Counter=9 ");
  EXPECT_EQ(uniqueIdText(0x41424344), "ABCD");
}

}  // namespace
}  // namespace plumetta
