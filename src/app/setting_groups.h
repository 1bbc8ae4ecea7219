// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>

#include "audio/remote_command.h"
#include "doc/document_services.h"
#include "doc/ruler_ticks.h"

namespace plumetta {

// The values of "plumetta.cfg" in groups, by what reads them, each with its default. Folders begin as a path
// that a system without drives has not got; `dialogFolder` makes a usable one of them.
inline constexpr const char* kDefaultFolder = "c:\\";

struct FileSettings {
  std::string sampleFolder = kDefaultFolder;  // where the last files were opened
  int recentFiles = 10;                       // how many are listed
  bool reopenFiles = true;                    // at start, those of last time
  int reopenedFiles = 12;                     // no more of them than this
  bool askToSave = true;                      // before a changed file is closed
  bool askOfLosses = true;                    // before a save drops what its format can't hold
};

struct DisplaySettings {
  int timeFormat = kTimeClock;  // a TimeFormat
  bool selectionGrid = false;   // lines that divide the selection
  int selectionGridParts = 4;
  bool fillWindow = false;        // the document in front has the window to itself, without the row of tabs
  bool followPlayback = true;     // the view scrolls along with the play position
  bool zoomAtPointer = false;     // the wheel zooms about the pointer, else about the cursor
  bool popupOnRightClick = true;  // else the right button extends the selection
  int dragScrollSpeed = 400;      // pixels a second, for a drag 20 pixels outside of the window
  bool loopsLocked = false;       // against dragging, as the next three
  bool markersLocked = false;
  bool envelopeLocked = false;
  bool samplesLocked = true;
  bool snapToZeroCrossing = false;  // the ends of a selection that is dragged
  double selectionFactor = 2.0;     // by which commands lengthen and shorten a selection; above 0
};

struct OutputSettings {
  bool asio = false;
  int deviceId = 0;
  int sampleRate = 44100;  // Hz
  int bitDepth = 16;
  int bufferFrames = 2048;
};

struct PlaybackSettings {
  bool loop = false;
  int windSpeed = 4;               // of forward and rewind
  bool realTimeResampling = true;  // to the output's rate
  bool playEnvelope = true;        // the volume automation
  double generalVolume = 1.0;      // a factor
  // The source channel that is heard on each output channel; -1 for silence.
  std::array<int, 16> routing{0, 1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
};

struct RecordingSettings {
  int deviceId = 0;
  int sampleRate = 44100;  // Hz
  int bitDepth = 16;
  int bufferFrames = 2048;
  bool alwaysNewDocument = true;
  bool keepFiles = false;  // the ".rec" files
};

struct MidiSettings {
  // The index of the input device that each slot opens at start; -1 for none.
  std::array<int, 16> devices{-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  RemoteControllers controllers = defaultControllers();
};

struct PluginSettings {
  std::string pluginFolder = kDefaultFolder;
  std::string chainFolder = kDefaultFolder;
  double tempo = 125.0;            // beats a minute, told to plug-ins
  bool disableAfterApply = false;  // playing leaves the rack once it was applied to the samples
};

struct ProgramSettings {
  std::string skinFile = kDefaultFolder;
  bool mediaKeys = true;  // of the keyboard drive the transport
};

struct NetworkSettings {
  std::string updateServer;  // its address; empty for none
  bool consent = false;      // the person has agreed to requests to it
  bool checkAtStart = true;
};

struct Settings {
  FileSettings files;
  EditSettings edit;
  DisplaySettings display;
  OutputSettings output;
  PlaybackSettings playback;
  RecordingSettings recording;
  MidiSettings midi;
  PluginSettings plugins;
  ProgramSettings program;
  NetworkSettings network;
};

}  // namespace plumetta
