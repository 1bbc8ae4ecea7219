// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/batch_plan.h"

#include <algorithm>
#include <deque>
#include <set>

#include "batch/batch_functions.h"
#include "batch/batch_names.h"
#include "platform/file_identity.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

class Walk {
 public:
  Walk(FileSystem& files, const BatchSettings& settings, const std::function<bool()>& stopped)
      : files_(files), settings_(settings), stopped_(stopped) {}

  BatchPlan take() {
    const std::string root = realPath(settings_.input);
    const std::string output = realPath(settings_.output);
    // The input folder itself is always walked.
    if (output != root) leftOut_ = output;
    walkFolder(settings_.input, settings_.output, root);
    return std::move(plan_);
  }

 private:
  // A folder that is to be walked, between the files of the one that holds it.
  struct Found {
    std::string name;
    std::string real;
    bool file;
    bool walkedAlready;
  };

  void walkFolder(const std::string& input, const std::string& output, const std::string& real) {
    const size_t folder = plan_.folders.size();
    plan_.folders.push_back({input, output});
    std::vector<std::string> names = files_.list(input);
    std::ranges::sort(names);
    std::vector<Found> found;
    for (const std::string& name : names) {
      if (stopped_()) return;
      if (const auto entry = look(input, real, name); entry.real != leftOut_ || entry.file)
        found.push_back(entry);
    }
    open_.insert(real);
    addEntries(folder, found);
    open_.erase(real);
  }

  Found look(const std::string& input, const std::string& real, const std::string& name) {
    const std::string path = joinPath(input, name);
    if (!settings_.recurse || files_.kind(path) != FileKind::folder) return {name, {}, true, false};
    std::string target = realPath(path);
    const bool link = target != joinPath(real, name);
    const bool circle = open_.contains(target) || target == real;
    // However many links lead to a folder, they count once; its own place in the tree counts besides.
    const bool again = circle || (link && !linked_.insert(target).second);
    return {name, std::move(target), false, again};
  }

  void addEntries(size_t folder, const std::vector<Found>& found) {
    std::deque<BatchEntry> named;  // pointers into it stay
    std::vector<BatchEntry*> fileEntries;
    for (const Found& entry : found) {
      named.push_back({folder, entry.name, {}, false, entry.walkedAlready});
      if (entry.file) fileEntries.push_back(&named.back());
    }
    const BatchFolder place = plan_.folders[folder];
    nameResults(files_, place.input,
                batchFunctions()[static_cast<size_t>(settings_.function)].savedExtension(), fileEntries);
    for (size_t i = 0; i < found.size(); ++i) {
      if (stopped_()) return;
      if (found[i].file || found[i].walkedAlready) {
        plan_.entries.push_back(std::move(named[i]));
      } else {
        walkFolder(joinPath(place.input, found[i].name), joinPath(place.output, found[i].name),
                   found[i].real);
      }
    }
  }

  FileSystem& files_;
  const BatchSettings& settings_;
  const std::function<bool()>& stopped_;
  BatchPlan plan_;
  std::string leftOut_;
  std::set<std::string> open_;    // real paths of the folders that are being walked
  std::set<std::string> linked_;  // real paths that links have led to
};

}  // namespace

BatchPlan planBatch(FileSystem& files, const BatchSettings& settings, const std::function<bool()>& stopped) {
  return Walk(files, settings, stopped).take();
}

bool outputLiesInInput(const BatchSettings& settings) {
  const std::string output = realPath(settings.output), input = realPath(settings.input);
  return settings.recurse ? liesInFolder(output, input) : output == input;
}

std::string overwriteQuestion(const BatchSettings& settings) {
  if (realPath(settings.output) == realPath(settings.input)) {
    return "The output folder is the input folder: results take the place of files that they are made from. "
           "Go on?";
  }
  return "The output folder lies inside the input folder. Its own files are left out. Go on?";
}

}  // namespace plumetta
