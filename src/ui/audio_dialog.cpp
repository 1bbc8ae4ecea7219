// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/audio_dialog.h"

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "audio/input_capture.h"
#include "ui/form_dialog.h"
#include "ui/text.h"

namespace plumetta {
namespace {

using Taker = std::function<void()>;

const SettingRow& rowOf(const std::string& key) {
  const auto& rows = settingRows();
  const auto found = std::ranges::find_if(rows, [&](const SettingRow& row) { return row.key == key; });
  if (found == rows.end()) throw std::logic_error("no setting " + key);
  return *found;
}

// A stored device that isn't there at the moment keeps its place, so that it is found again once it is back.
Taker addDevices(FormDialog& form, const wxString& label, const std::vector<std::string>& names,
                 int& device) {
  wxArrayString shown;
  for (const std::string& name : names) shown.Add(toWx(name));
  int selected = device;
  if (selected < 0 || selected >= static_cast<int>(names.size())) {
    selected = static_cast<int>(names.size());
    shown.Add(names.empty() ? wxString("No device") : wxString::Format("Device %d (not there)", device));
  }
  const wxChoice* field = form.addChoice(label, shown, selected);
  const int count = static_cast<int>(names.size());
  return [&device, field, count] {
    if (field->GetSelection() < count) device = field->GetSelection();
  };
}

// One of the numbers that the setting accepts.
Taker addNumbers(FormDialog& form, const wxString& label, const wxString& unit, const char* key, int& value) {
  const SettingRow& row = rowOf(key);
  wxArrayString shown;
  int selected = 0;
  for (const SettingChoice& choice : row.choices) {
    if (choice.value == value) selected = static_cast<int>(shown.size());
    shown.Add(wxString::Format("%d", choice.value));
  }
  const wxChoice* field = form.addChoice(label, shown, selected, unit);
  return [&value, &row, field] { value = row.choices[static_cast<size_t>(field->GetSelection())].value; };
}

Taker addBuffer(FormDialog& form, const char* key, int& value) {
  const SettingRow& row = rowOf(key);
  wxArrayString common;
  for (int frames = 256; frames <= row.maximum; frames *= 2) common.Add(wxString::Format("%d", frames));
  const wxComboBox* field = form.addCombo("Buffer", "frames", wxString::Format("%d", value), common,
                                          wholeNumberBetween(row.minimum, row.maximum));
  return [&value, field] { value = static_cast<int>(checkedNumber(*field)); };
}

// The system's own output, and each ASIO driver. Of the two lists of devices only the chosen one's counts.
void addOutput(FormDialog& form, OutputDevice& output, OutputSettings& settings, std::vector<Taker>& takers) {
  const std::vector<std::string> asio = output.asioNames();
  wxArrayString drivers;
  drivers.Add("System");
  for (const std::string& name : asio) drivers.Add("ASIO: " + toWx(name));
  const bool usesAsio =
      settings.asio && settings.deviceId >= 0 && settings.deviceId < static_cast<int>(asio.size());
  const wxChoice* driver = form.addChoice("Driver", drivers, usesAsio ? settings.deviceId + 1 : 0);
  if (!usesAsio) settings.asio = false;
  takers.push_back(addDevices(form, "Device", output.waveOutNames(), settings.deviceId));
  takers.push_back(addNumbers(form, "Sample rate", "Hz", "AudioOutSampleRate", settings.sampleRate));
  takers.push_back(addNumbers(form, "Resolution", "bits", "AudioOutBitDepth", settings.bitDepth));
  takers.push_back(addBuffer(form, "AudioOutBufferSize(sample)", settings.bufferFrames));
  takers.push_back([&settings, driver] {
    settings.asio = driver->GetSelection() > 0;
    if (settings.asio) settings.deviceId = driver->GetSelection() - 1;
  });
}

void addInput(FormDialog& form, RecordingSettings& settings, std::vector<Taker>& takers) {
  std::string error;  // the output page shows the same lack of a sound server
  takers.push_back(addDevices(form, "Device", waveInDeviceNames(nativeWaveIn(), error), settings.deviceId));
  takers.push_back(addNumbers(form, "Sample rate", "Hz", "AudioInSampleRate", settings.sampleRate));
  takers.push_back(addNumbers(form, "Resolution", "bits", "AudioInBitDepth", settings.bitDepth));
  takers.push_back(addBuffer(form, "AudioInBufferSize(sample)", settings.bufferFrames));
  wxCheckBox* fresh = form.addCheckBox("Always record into a new file", settings.alwaysNewDocument);
  wxCheckBox* keep = form.addCheckBox("Keep recording files (.rec)", settings.keepFiles);
  takers.push_back([&settings, fresh, keep] {
    settings.alwaysNewDocument = fresh->GetValue();
    settings.keepFiles = keep->GetValue();
  });
}

}  // namespace

bool askAudioConfiguration(wxWindow* parent, Application& app) {
  OutputSettings output = app.settings().output;
  RecordingSettings input = app.settings().recording;
  FormDialog form(parent, "Audio configuration");
  std::vector<Taker> takers;
  form.addPage("Output");
  addOutput(form, app.output(), output, takers);
  form.addPage("Input");
  addInput(form, input, takers);
  if (!form.ask()) return false;
  for (const Taker& take : takers) take();
  app.settings().output = output;
  app.settings().recording = input;
  return true;
}

}  // namespace plumetta
