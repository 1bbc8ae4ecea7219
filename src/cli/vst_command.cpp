// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli vst`: the list of plug-ins, and what fills it.
#include <chrono>
#include <cstdio>
#include <thread>

#include "app/plugin_library.h"
#include "cli/call.h"
#include "cli/json.h"
#include "cli/terminal_prompter.h"
#include "platform/interrupt.h"
#include "platform/paths.h"
#include "platform/private_profile.h"
#include "platform/terminal.h"

namespace plumetta {
namespace {

constexpr auto kShowInterval = std::chrono::milliseconds(30);

// The words of one call, without its flags.
struct VstCall {
  std::vector<std::string> words;
  bool recurse = false, instruments = false, append = false, again = false, json = false;
};

struct Flag {
  const char* word;
  bool VstCall::*set;
};
constexpr Flag kScanFlags[] = {{"--recurse", &VstCall::recurse},
                               {"--instruments", &VstCall::instruments},
                               {"--add", &VstCall::append},
                               {"--again", &VstCall::again}};
constexpr Flag kJsonFlag[] = {{"--json", &VstCall::json}};

VstCall readCall(WordReader& words, const std::string& what, std::span<const Flag> flags) {
  VstCall call;
  while (!words.atEnd()) {
    const std::string word = words.take();
    bool known = false;
    for (const Flag& flag : flags) {
      if (word != flag.word) continue;
      call.*flag.set = true;
      known = true;
    }
    if (known) continue;
    if (word.starts_with("--")) words.fail(what + ": unknown option '" + word + "'");
    call.words.push_back(word);
  }
  return call;
}

// ---- Descriptions ---------------------------------------------------------------------------------------

void writeJson(JsonWriter& json, const PluginDescription& plugin) {
  const auto number = [](const std::string& text) { return parseProfileInt(text); };
  json.key("path").value(plugin.path).key("name").value(plugin.effectName);
  json.key("vendor").value(plugin.vendor).key("product").value(plugin.product);
  json.key("uid").value(plugin.uid).key("vst_version").value(number(plugin.vstVersion));
  json.key("version").value(number(plugin.version)).key("synth").value(plugin.isSynth());
  json.key("inputs").value(number(plugin.inputs)).key("outputs").value(number(plugin.outputs));
  json.key("parameters").value(number(plugin.parameters));
  json.key("programs").value(number(plugin.programs)).key("editor").value(number(plugin.editor) != 0);
}

std::string asText(const PluginDescription& plugin) {
  std::string text = plugin.displayName() + "\n";
  for (const DescriptionKey& key : kDescriptionKeys) {
    std::string name = key.key;
    name.resize(18, ' ');
    text += "  " + name + plugin.*key.text + "\n";
  }
  return text;
}

// ---- vst scan -------------------------------------------------------------------------------------------

// The path that is looked at, on a terminal.
class ScanningLine {
 public:
  explicit ScanningLine(bool quiet) : wanted_(!quiet && isTerminal(StandardStream::error)) {}
  ~ScanningLine() { show(""); }
  ScanningLine(const ScanningLine&) = delete;
  ScanningLine& operator=(const ScanningLine&) = delete;

  void show(const std::string& path) {
    if (!wanted_ || path == shown_) return;
    std::fprintf(stderr, "\r\033[K%s", path.empty() ? "" : ("Scanning: " + path).c_str());
    std::fflush(stderr);
    shown_ = path;
  }

 private:
  bool wanted_;
  std::string shown_;
};

void runWatched(PluginScan& scan, bool quiet) {
  const InterruptWatch interrupt;
  ScanningLine line(quiet);
  scan.start();
  while (scan.running()) {
    if (interrupt.interrupted()) scan.stop();
    line.show(scan.currentPath());
    std::this_thread::sleep_for(kShowInterval);
  }
}

int scan(const CallOptions& options, WordReader words) {
  const VstCall call = readCall(words, "vst scan", kScanFlags);
  if (call.words.size() != 1) words.fail("vst scan: one FOLDER is wanted");
  if (words.failed()) return wrongCall(words.error());
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  PluginScan scan(app.files(), scanPlaces(app),
                  {call.words[0], call.recurse, call.instruments, call.append, call.again});
  runWatched(scan, options.quiet);
  for (const SkippedPlugin& plugin : scan.newlySkipped()) {
    prompter.message("Skipped " + plugin.path + ": it " + plugin.text() + ".");
  }
  if (!scan.failure().empty()) {
    prompter.message(scan.failure());
    return kFileError;
  }
  prompter.message(scan.summary());
  return kAllDone;
}

// ---- vst list, vst info -----------------------------------------------------------------------------------

std::string listAsJson(const std::vector<PluginDescription>& plugins) {
  JsonWriter json;
  json.beginArray();
  int index = 0;
  for (const PluginDescription& plugin : plugins) {
    json.beginObject().key("index").value(index++);
    writeJson(json, plugin);
    json.endObject();
  }
  return json.endArray().text() + "\n";
}

std::string listAsText(const std::vector<PluginDescription>& plugins) {
  std::string text;
  int index = 0;
  for (const PluginDescription& plugin : plugins) {
    text += std::to_string(index++) + "\t" + plugin.displayName() + (plugin.isSynth() ? " [instrument]" : "");
    for (const std::string& column :
         {plugin.vendor, plugin.product, plugin.inputs, plugin.outputs, plugin.path}) {
      text += "\t" + column;
    }
    text += "\n";
  }
  return text;
}

int list(const CallOptions& options, WordReader words) {
  const VstCall call = readCall(words, "vst list", kJsonFlag);
  if (!call.words.empty()) words.fail("vst list: what is '" + call.words[0] + "'?");
  if (words.failed()) return wrongCall(words.error());
  TerminalPrompter prompter(options.answer, options.quiet);
  const Application app(prompter, nativeFileSystem(), options.home);
  const std::vector<PluginDescription> plugins = listedPlugins(app);
  return print(call.json ? listAsJson(plugins) : listAsText(plugins)) ? kAllDone : kFileError;
}

int info(const CallOptions& options, WordReader words) {
  const VstCall call = readCall(words, "vst info", kJsonFlag);
  if (call.words.size() != 1) words.fail("vst info: one PLUGIN is wanted");
  if (words.failed()) return wrongCall(words.error());
  TerminalPrompter prompter(options.answer, options.quiet);
  Application app(prompter, nativeFileSystem(), options.home);
  const auto path = pluginPath(app, call.words[0]);
  if (!path) return kRefused;
  std::optional<PluginDescription> plugin;
  std::string reason;
  const ProbeListener listener{[](const std::string&) {},
                               [&](const PluginDescription& found) { plugin = found; },
                               [&](const std::string&, SkipReason why) {
                                 reason = "\nIt " + SkippedPlugin{*path, 0, why}.text() + ".";
                               },
                               [] { return false; }};
  PluginProber(scanPlaces(app).probeProgram).probe({*path}, listener);
  if (!plugin) {
    prompter.message(unableToLoad(*path) + reason);
    return kRefused;
  }
  if (!call.json) return print(asText(*plugin)) ? kAllDone : kFileError;
  JsonWriter json;
  json.beginObject();
  writeJson(json, *plugin);
  return print(json.endObject().text() + "\n") ? kAllDone : kFileError;
}

}  // namespace

int runVst(const CallOptions& options, WordReader words) {
  const std::string what = words.atEnd() ? "" : words.take();
  if (what == "scan") return scan(options, words.remaining());
  if (what == "list") return list(options, words.remaining());
  if (what == "info") return info(options, words.remaining());
  return wrongCall("vst: scan, list or info is wanted");
}

}  // namespace plumetta
