// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/file_system.h"
#include "vst/plugin_list.h"
#include "vst/plugin_probe.h"
#include "vst/skipped_plugins.h"

namespace plumetta {

struct ScanOptions {
  std::string folder = {};
  bool recurse = true;
  bool instruments = false;      // are listed too
  bool append = false;           // to the list that is there; else that is deleted first
  bool again = false;            // also those that were skipped before
  std::string onlyLibrary = {};  // looked at alone, again, and to append; else the folder is walked
};

// Where the list stands, what is skipped, and the program that looks at libraries.
struct ScanPlaces {
  std::string listPath;
  std::string skippedPath;
  std::string probeProgram;
  std::chrono::milliseconds limit = kProbeLimit;  // for one library
};

// Whether a file of this name is looked at: "dll" or "DLL" stands somewhere behind its last dot, or the
// system's own extension.
bool isLibraryName(const std::string& name);

// One walk over a folder that adds every plug-in in it to the list.
class PluginScan {
 public:
  PluginScan(FileSystem& files, ScanPlaces places, ScanOptions options);
  // Stops it.
  ~PluginScan();
  PluginScan(const PluginScan&) = delete;
  PluginScan& operator=(const PluginScan&) = delete;

  // The whole scan, on this thread.
  void run();
  // The same on a thread of its own.
  void start();

  // Any thread.
  void stop() { stopped_ = true; }
  bool running() const { return running_; }
  std::string currentPath() const;

  // Once it isn't running any more:
  // "%d plugs detected in %s".
  std::string summary() const;
  int count() const { return count_; }  // plug-ins that the list holds now
  const std::vector<SkippedPlugin>& newlySkipped() const { return newlySkipped_; }
  // Why it has ended early; empty when it has not, and when it was stopped.
  const std::string& failure() const { return failure_; }

 private:
  void walk(const std::string& folder);
  void meet(const std::string& folder, const std::string& name);
  void probeWaiting();
  void list(const PluginDescription& plugin);
  void skip(const std::string& path, SkipReason reason);
  void fail(const std::string& text);
  void setCurrentPath(const std::string& path);

  FileSystem& files_;
  ScanPlaces places_;
  ScanOptions options_;
  PluginListFile list_;
  SkippedPlugins skipped_;
  PluginProber prober_;
  std::vector<std::string> waiting_;  // libraries for the next process
  std::set<std::string> walked_;      // folders, so that links that loop come to an end
  std::vector<SkippedPlugin> newlySkipped_;
  std::string failure_;
  int count_ = 0;
  std::atomic<bool> stopped_{false};
  std::atomic<bool> running_{false};
  mutable std::mutex pathMutex_;
  std::string currentPath_;
  std::thread worker_;
};

}  // namespace plumetta
