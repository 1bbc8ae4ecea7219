// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/plugin_scan.h"

#include <algorithm>

#include "platform/file_identity.h"
#include "platform/paths.h"
#include "platform/plugin_folders.h"

namespace plumetta {
namespace {

// Libraries that one process looks at. Starting one costs more than most libraries do; the names of all have
// to fit into one command line.
constexpr size_t kLibrariesAProcess = 16;

}  // namespace

bool isLibraryName(const std::string& name) {
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) return false;
  const std::string_view extension = std::string_view(name).substr(dot + 1);
  return extension.find("dll") != std::string_view::npos || extension.find("DLL") != std::string_view::npos ||
         extension == kLibraryExtension;
}

PluginScan::PluginScan(FileSystem& files, ScanPlaces places, ScanOptions options)
    : files_(files),
      places_(std::move(places)),
      options_(std::move(options)),
      list_(places_.listPath),
      skipped_(files, places_.skippedPath),
      prober_(places_.probeProgram, places_.limit) {}

PluginScan::~PluginScan() {
  stop();
  if (worker_.joinable()) worker_.join();
}

void PluginScan::start() {
  running_ = true;
  worker_ = std::thread([this] {
    run();
    running_ = false;
  });
}

void PluginScan::run() {
  if (!options_.onlyLibrary.empty()) {
    options_.again = true;
    count_ = list_.counter();
    meet(folderOf(options_.onlyLibrary), fileNameOf(options_.onlyLibrary));
    return probeWaiting();
  }
  const std::string folder = absolutePath(options_.folder);
  // A folder that isn't there costs nobody the list.
  if (files_.kind(folder) != FileKind::folder) return fail("There is no folder " + options_.folder);
  if (options_.append) {
    count_ = list_.counter();
  } else if (files_.kind(list_.path()) != FileKind::missing) {
    if (const auto error = files_.remove(list_.path())) {
      return fail("Unable to delete " + list_.path() + "\n" + error.message());
    }
  }
  walk(folder);
  probeWaiting();
}

std::string PluginScan::summary() const {
  return std::to_string(count_) + " plugs detected in " + options_.folder;
}

std::string PluginScan::currentPath() const {
  const std::lock_guard guard(pathMutex_);
  return currentPath_;
}

void PluginScan::setCurrentPath(const std::string& path) {
  const std::lock_guard guard(pathMutex_);
  currentPath_ = path;
}

void PluginScan::walk(const std::string& folder) {
  if (!walked_.insert(realPath(folder)).second) return;
  std::vector<std::string> names = files_.list(folder);
  std::ranges::sort(names);
  for (const std::string& name : names) {
    if (stopped_) return;
    meet(folder, name);
  }
}

void PluginScan::meet(const std::string& folder, const std::string& name) {
  const std::string path = absolutePath(joinPath(folder, name));
  const FileKind kind = files_.kind(path);
  if (kind == FileKind::folder) {
    if (options_.recurse) walk(path);
    return;
  }
  if (kind != FileKind::regular || !isLibraryName(name)) return;
  if (!options_.again && skipped_.contains(path)) return;
  skipped_.forget(path);
  waiting_.push_back(path);
  if (waiting_.size() == kLibrariesAProcess) probeWaiting();
}

void PluginScan::probeWaiting() {
  const ProbeListener listener{[this](const std::string& path) { setCurrentPath(path); },
                               [this](const PluginDescription& plugin) { list(plugin); },
                               [this](const std::string& path, SkipReason reason) { skip(path, reason); },
                               [this] { return stopped_.load(); }};
  if (!prober_.probe(waiting_, listener)) fail("Unable to start " + places_.probeProgram);
  waiting_.clear();
}

void PluginScan::list(const PluginDescription& plugin) {
  if (plugin.isSynth() && !options_.instruments) return;
  if (list_.append(count_, plugin)) {
    ++count_;
  } else {
    fail("Unable to write " + list_.path());
  }
}

void PluginScan::skip(const std::string& path, SkipReason reason) {
  skipped_.add(path, reason);
  newlySkipped_.push_back({path, 0, reason});
}

void PluginScan::fail(const std::string& text) {
  if (failure_.empty()) failure_ = text;
  stop();
}

}  // namespace plumetta
