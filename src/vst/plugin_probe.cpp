// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/plugin_probe.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <span>

#include "platform/child_process.h"
#include "vst/vst_host.h"

namespace plumetta {
namespace {

using Clock = std::chrono::steady_clock;

// What the process says: that it begins with the next path, a key and its text, that this was a plug-in
// (after it has been closed), or that it was none.
constexpr std::string_view kBegins = "begins";
constexpr std::string_view kText = "text ";
constexpr std::string_view kFound = "found";
constexpr std::string_view kNone = "none";

constexpr auto kStopInterval = std::chrono::milliseconds(50);
// A line of ours is shorter than this; more than that without a line's end is a plug-in's own talk.
constexpr size_t kLongestLine = 1 << 16;

std::string randomWord() {
  std::random_device random;
  char word[24];
  std::snprintf(word, sizeof word, "%08x%08x", static_cast<unsigned>(random()),
                static_cast<unsigned>(random()));
  return word;
}

// Begins a line first: a plug-in may have written half of one.
void say(const std::string& mark, std::string_view text) {
  const std::string line = "\n" + mark + " " + std::string(text) + "\n";
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

// ---- On the side of the caller ----------------------------------------------------------------------------

// One run of the process over paths, up to its end or to a library that brings it down.
class ProbeRun {
 public:
  ProbeRun(std::span<const std::string> paths, const ProbeListener& listener, std::chrono::milliseconds limit)
      : paths_(paths), listener_(listener), limit_(limit), mark_(randomWord()) {}

  // How many of the paths are done with; none when the process can't be started.
  size_t run(const std::string& program) {
    std::vector<std::string> words{kProbeSwitch, mark_};
    words.insert(words.end(), paths_.begin(), paths_.end());
    if (!child_.start(program, words)) return 0;
    since_ = Clock::now();
    while (done_ < paths_.size() && !listener_.stopped()) {
      const auto reading = child_.read(output_, kStopInterval);
      takeLines();
      if (done_ == paths_.size()) break;
      if (reading == ChildProcess::Reading::ended) {
        // Where others were looked at before it, it may have been brought down by one of those: the next
        // process begins with it.
        if (begun_ && done_ == 0) skip(SkipReason::crashed);
        break;
      }
      if (Clock::now() - since_ < limit_) continue;
      skip(SkipReason::hung);
      break;
    }
    return done_;
  }

 private:
  void skip(SkipReason reason) { listener_.skipped(paths_[done_++], reason); }

  void takeLines() {
    size_t start = 0;
    for (size_t end = output_.find('\n'); end != std::string::npos; end = output_.find('\n', start)) {
      std::string_view line = std::string_view(output_).substr(start, end - start);
      start = end + 1;
      if (line.ends_with('\r')) line.remove_suffix(1);
      if (!line.starts_with(mark_ + " ") || done_ == paths_.size()) continue;
      take(line.substr(mark_.size() + 1));
    }
    output_.erase(0, start);
    if (output_.size() > kLongestLine) output_.clear();
  }

  void take(std::string_view line) {
    if (line == kBegins) {
      begun_ = true;
      plugin_ = {};
      since_ = Clock::now();
      listener_.begins(paths_[done_]);
    } else if (line.starts_with(kText)) {
      takeText(line.substr(kText.size()));
    } else if (line == kFound || line == kNone) {
      plugin_.path = paths_[done_];
      if (line == kFound) listener_.found(plugin_);
      ++done_;
      begun_ = false;
      since_ = Clock::now();
    }
  }

  void takeText(std::string_view line) {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) return;
    for (const DescriptionKey& key : kDescriptionKeys) {
      if (line.substr(0, equals) == key.key) plugin_.*key.text = line.substr(equals + 1);
    }
  }

  std::span<const std::string> paths_;
  const ProbeListener& listener_;
  std::chrono::milliseconds limit_;
  std::string mark_;
  ChildProcess child_;
  std::string output_;
  PluginDescription plugin_;
  size_t done_ = 0;
  bool begun_ = false;  // with paths_[done_]
  Clock::time_point since_;
};

}  // namespace

int runPluginProbe(const std::vector<std::string>& words) {
  if (words.empty()) return 2;
  settleAsChild();
  const VstHost host;  // answers what plug-ins ask
  for (size_t i = 1; i < words.size(); ++i) {
    say(words[0], kBegins);
    VstPlugin plugin;
    if (plugin.probe(words[i]) != 0) {
      say(words[0], kNone);
      continue;
    }
    const PluginDescription description = describe(plugin);
    for (const DescriptionKey& key : kDescriptionKeys) {
      say(words[0], std::string(kText) + key.key + "=" + oneLine(description.*key.text));
    }
    plugin.close();
    say(words[0], kFound);
  }
  return 0;
}

bool PluginProber::probe(const std::vector<std::string>& paths, const ProbeListener& listener) const {
  std::span<const std::string> rest = paths;
  while (!rest.empty() && !listener.stopped()) {
    const size_t done = ProbeRun(rest, listener, limit_).run(program_);
    if (done == 0) return listener.stopped();
    rest = rest.subspan(done);
  }
  return true;
}

}  // namespace plumetta
