// SPDX-License-Identifier: GPL-3.0-or-later
// The table of settings.
#include <cfloat>
#include <climits>
#include <cstdio>

#include "app/settings.h"
#include "net/net_address.h"

namespace plumetta {
namespace {

constexpr const char* kGeneral = "General";
constexpr double kAnyInteger[] = {INT_MIN, INT_MAX};
// Numbers become 32-bit floats where they are used; what would be infinite there is refused.
constexpr double kAnyReal[] = {-FLT_MAX, FLT_MAX};
constexpr double kLeastFactor = 1e-7;  // what seven decimals can hold above 0

template <class Group, class Value>
std::function<Value&(Settings&)> at(Group Settings::*group, Value Group::*member) {
  return [=](Settings& settings) -> Value& { return settings.*group.*member; };
}

// One entry of an array of integers.
template <class Group, size_t kCount>
IntegerPlace at(Group Settings::*group, std::array<int, kCount> Group::*member, size_t index) {
  return [=](Settings& settings) -> int& { return (settings.*group.*member)[index]; };
}

Preference general(const char* label, const char* unit = "") {
  return {PreferencePage::general, label, unit};
}
Preference display(const char* label, const char* unit = "") {
  return {PreferencePage::display, label, unit};
}
Preference editing(const char* label, const char* unit = "") {
  return {PreferencePage::editing, label, unit};
}

Preference network(const char* label) { return {PreferencePage::network, label}; }

SettingRow boolean(const char* key, BooleanPlace place, Preference preference = {}) {
  return {kGeneral, key, std::move(place), 0, 1, {}, {}, preference};
}

SettingRow path(const char* key, PathPlace place) {
  return {kGeneral, key, std::move(place), 0, 0, {}, {}, {}};
}

SettingRow integer(const char* key, IntegerPlace place, double minimum, double maximum,
                   Preference preference = {}) {
  return {kGeneral, key, std::move(place), minimum, maximum, {}, {}, preference};
}

SettingRow anyInteger(const char* key, IntegerPlace place) {
  return integer(key, std::move(place), kAnyInteger[0], kAnyInteger[1]);
}

SettingRow oneOf(const char* key, IntegerPlace place, std::vector<SettingChoice> choices,
                 Preference preference = {}) {
  return {kGeneral, key, std::move(place), 0, 0, std::move(choices), {}, preference};
}

SettingRow real(const char* key, RealPlace place) {
  return {kGeneral, key, std::move(place), kAnyReal[0], kAnyReal[1], {}, {}, {}};
}

// Plug-ins are told no tempo beyond these bounds.
SettingRow tempo(const char* key, RealPlace place) {
  constexpr double kSlowest = 0.01, kFastest = 499.99;
  SettingRow row = real(key, std::move(place));
  row.preference = {PreferencePage::plugins, "Tempo that plug-ins are told", "BPM", kSlowest, kFastest};
  return row;
}

SettingRow replacing(SettingRow row, double replacement) {
  row.replacement = replacement;
  return row;
}

std::vector<SettingChoice> numbers(std::initializer_list<int> values) {
  std::vector<SettingChoice> choices;
  for (const int value : values) choices.push_back({value, ""});
  return choices;
}

std::string numbered(const char* format, size_t number) {
  char key[32];
  std::snprintf(key, sizeof key, format, static_cast<int>(number));
  return key;
}

void append(std::vector<SettingRow>& rows, std::vector<SettingRow> more) {
  for (SettingRow& row : more) rows.push_back(std::move(row));
}

std::vector<SettingRow> generalNumbers() {
  using S = Settings;
  return {
      integer("LastFileOpenedIndex", at(&S::files, &FileSettings::reopenedFiles), 1, 1000,
              general("Files opened again, at most")),
      path("VSTPathOpen", at(&S::plugins, &PluginSettings::pluginFolder)),
      path("SorPathOpen", at(&S::plugins, &PluginSettings::chainFolder)),
      tempo("VSTBPM", at(&S::plugins, &PluginSettings::tempo)),
      path("SamplePathOpen", at(&S::files, &FileSettings::sampleFolder)),
      path("SkinFileName", at(&S::program, &ProgramSettings::skinFile)),
      oneOf("AudioInSampleRate", at(&S::recording, &RecordingSettings::sampleRate),
            numbers({11025, 22050, 44100, 48000, 96000, 192000})),
      oneOf("AudioInBitDepth", at(&S::recording, &RecordingSettings::bitDepth), numbers({8, 16, 24})),
      anyInteger("AudioInId", at(&S::recording, &RecordingSettings::deviceId)),
      replacing(
          integer("AudioInBufferSize(sample)", at(&S::recording, &RecordingSettings::bufferFrames), 1, 8192),
          8192),
      integer("SelectionGridLineNumber", at(&S::display, &DisplaySettings::selectionGridParts), 1, 1024,
              display("Parts of the selection's grid")),
      integer("ForwardRewindSpeed", at(&S::playback, &PlaybackSettings::windSpeed), 1, 99),
      integer("MRUCount", at(&S::files, &FileSettings::recentFiles), 1, 16,
              general("Recent files in the list")),
      oneOf("ChildTimeFormat", at(&S::display, &DisplaySettings::timeFormat),
            {{kTimeSamples, "Samples"},
             {kTimeSeconds, "Seconds"},
             {kTimeMilliseconds, "Milliseconds"},
             {kTimeClock, "Hours, minutes, seconds"}},
            display("Positions in")),
      integer("OutOfWaveSpeed", at(&S::display, &DisplaySettings::dragScrollSpeed), 1, 2000,
              display("Scrolling while dragging outside", "pixels a second")),
  };
}

std::vector<SettingRow> generalFlags() {
  using S = Settings;
  return {
      boolean("Loop", at(&S::playback, &PlaybackSettings::loop)),
      boolean("ASIODriver", at(&S::output, &OutputSettings::asio)),
      boolean("ReminderOnClose", at(&S::files, &FileSettings::askToSave),
              general("Ask to save before a changed file is closed")),
      boolean("ReminderOnLoss", at(&S::files, &FileSettings::askOfLosses),
              general("Ask before a file loses something by being saved")),
      boolean("KeepForeignChunks", at(&S::edit, &EditSettings::keepForeignChunks),
              general("Keep the chunks of other programs in WAV files")),
      boolean("RealTimeResampling", at(&S::playback, &PlaybackSettings::realTimeResampling)),
      boolean("PasteReplace", at(&S::edit, &EditSettings::pasteReplace),
              editing("Paste replaces the selection")),
      boolean("AlwaysNewForRecord", at(&S::recording, &RecordingSettings::alwaysNewDocument)),
      boolean("Keep recording files (.rec)", at(&S::recording, &RecordingSettings::keepFiles)),
      boolean("Undo in RAM", at(&S::edit, &EditSettings::undoInRam), editing("Undo in RAM")),
      boolean("PopupMenuRightClick", at(&S::display, &DisplaySettings::popupOnRightClick),
              display("Right click opens a menu (else it extends the selection)")),
      boolean("PlayVolumeAutomation", at(&S::playback, &PlaybackSettings::playEnvelope)),
      boolean("AutoCheckForUpdate", at(&S::network, &NetworkSettings::checkAtStart),
              network("Look for a newer version at start")),
      boolean("SelectionGridLine", at(&S::display, &DisplaySettings::selectionGrid),
              display("Grid lines in the selection")),
      boolean("LoopPointsLocked", at(&S::display, &DisplaySettings::loopsLocked),
              editing("Loop points are locked")),
      boolean("MarkerPointsLocked", at(&S::display, &DisplaySettings::markersLocked),
              editing("Markers are locked")),
      boolean("AutomPointsLocked", at(&S::display, &DisplaySettings::envelopeLocked),
              editing("Volume points are locked")),
      boolean("WavPointsLocked", at(&S::display, &DisplaySettings::samplesLocked),
              editing("Samples are locked")),
      boolean("ScrollSample", at(&S::display, &DisplaySettings::followPlayback)),
      boolean("MultimediaKey", at(&S::program, &ProgramSettings::mediaKeys),
              general("Media keys of the keyboard")),
      boolean("DisableProcessAfterApply", at(&S::plugins, &PluginSettings::disableAfterApply),
              {PreferencePage::plugins, "Plug-ins are muted once their chain has been applied"}),
      boolean("SnapToZeroCrossing", at(&S::display, &DisplaySettings::snapToZeroCrossing),
              editing("Selections snap to zero crossings")),
      boolean("RememberLastFileOpened", at(&S::files, &FileSettings::reopenFiles),
              general("Open the files of last time at start")),
      boolean("MaximizedChild", at(&S::display, &DisplaySettings::fillWindow),
              display("One file fills the window (no row of tabs)")),
      boolean("ZoomAtMousePointer", at(&S::display, &DisplaySettings::zoomAtPointer),
              display("The wheel zooms at the pointer (else at the cursor)")),
  };
}

std::vector<SettingRow> factorsAndOutput() {
  using S = Settings;
  SettingRow factor = real("SelectionMultDivFactor", at(&S::display, &DisplaySettings::selectionFactor));
  factor.minimum = kLeastFactor;
  factor.preference = editing("Lengthen and shorten by");
  return {
      replacing(factor, 2.0),
      real("GeneralVolume", at(&S::playback, &PlaybackSettings::generalVolume)),
      anyInteger("AudioOutId", at(&S::output, &OutputSettings::deviceId)),
      oneOf("AudioOutSampleRate", at(&S::output, &OutputSettings::sampleRate),
            numbers({11025, 22050, 44100, 48000, 88200, 96000, 192000})),
      oneOf("AudioOutBitDepth", at(&S::output, &OutputSettings::bitDepth), numbers({8, 16})),
      replacing(integer("AudioOutBufferSize(sample)", at(&S::output, &OutputSettings::bufferFrames), 1, 4096),
                4096),
  };
}

// The address of a server, or none.
std::string serverProblem(const std::string& address) {
  return address.empty() ? "" : addressProblem(address, NetSchemes::web);
}

std::vector<SettingRow> updates() {
  using S = Settings;
  SettingRow server = path("UpdateServer", at(&S::network, &NetworkSettings::updateServer));
  server.preference = network("Update server");
  server.problemOf = serverProblem;
  return {server, boolean("UpdateConsent", at(&S::network, &NetworkSettings::consent),
                          network("The update server may be asked for the newest version"))};
}

std::vector<SettingRow> numberedRows() {
  std::vector<SettingRow> rows;
  for (size_t i = 0; i < MidiSettings{}.devices.size(); ++i) {
    rows.push_back({"MidiIn",
                    numbered("MidiInOpen%2.2d", i),
                    at(&Settings::midi, &MidiSettings::devices, i),
                    -1,
                    15,
                    {},
                    {},
                    {}});
  }
  for (size_t i = 0; i < kRemoteCommandCount; ++i) {
    rows.push_back({"MidiInCommand",
                    kRemoteCommands[i].name,
                    at(&Settings::midi, &MidiSettings::controllers, i),
                    0,
                    kLastController,
                    {},
                    {},
                    {}});
  }
  for (size_t i = 0; i < PlaybackSettings{}.routing.size(); ++i) {
    rows.push_back({"Routing out",
                    numbered("Channel%2.2d", i),
                    at(&Settings::playback, &PlaybackSettings::routing, i),
                    -1,
                    15,
                    {},
                    {},
                    {}});
  }
  return rows;
}

}  // namespace

const std::vector<SettingRow>& settingRows() {
  static const std::vector<SettingRow> rows = [] {
    std::vector<SettingRow> all = generalNumbers();
    append(all, updates());
    append(all, generalFlags());
    append(all, factorsAndOutput());
    append(all, numberedRows());
    return all;
  }();
  return rows;
}

}  // namespace plumetta
