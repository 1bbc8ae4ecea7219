// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/audio_dialog.h"

#include <wx/filedlg.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "audio/input_capture.h"
#include "ui/form_dialog.h"
#include "ui/text.h"

namespace plumetta {
namespace {

using Taker = std::function<void()>;
struct FieldWithTaker {
  wxWindow* window;
  Taker take;
};

const SettingRow& rowOf(const std::string& key) {
  const auto& rows = settingRows();
  const auto found = std::ranges::find_if(rows, [&](const SettingRow& row) { return row.key == key; });
  if (found == rows.end()) throw std::logic_error("no setting " + key);
  return *found;
}

// A stored device that isn't there at the moment keeps its place, so that it is found again once it is back.
FieldWithTaker addDevices(FormDialog& form, const wxString& label, const std::vector<std::string>& names,
                          int& device) {
  wxArrayString shown;
  for (const std::string& name : names) shown.Add(toWx(name));
  int selected = device;
  if (selected < 0 || selected >= static_cast<int>(names.size())) {
    selected = static_cast<int>(names.size());
    shown.Add(names.empty() ? wxString("No device") : wxString::Format("Device %d (not there)", device));
  }
  wxChoice* field = form.addChoice(label, shown, selected);
  const int count = static_cast<int>(names.size());
  return {field, [&device, field, count] {
            if (field->GetSelection() < count) device = field->GetSelection();
          }};
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

FieldWithTaker addBuffer(FormDialog& form, const char* key, int& value) {
  const SettingRow& row = rowOf(key);
  wxArrayString common;
  for (int frames = 256; frames <= row.maximum; frames *= 2) common.Add(wxString::Format("%d", frames));
  wxComboBox* field = form.addCombo("Buffer", "frames", wxString::Format("%d", value), common,
                                    wholeNumberBetween(row.minimum, row.maximum));
  return {field, [&value, field] { value = static_cast<int>(checkedNumber(*field)); }};
}

wxString testReportPath(wxWindow* parent) {
  wxFileDialog dialog(parent, "Save the test report", wxString(), "asio.txt", "Text files (*.txt)|*.txt",
                      wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  return dialog.ShowModal() == wxID_OK ? dialog.GetPath() : wxString();
}

// What is done with the chosen ASIO driver at once. `chosen` is its index.
std::vector<wxButton*> addAsioButtons(FormDialog& form, Application& app, std::function<int()> chosen) {
  const auto panel = [&app, chosen] { app.output().openAsioControlPanel(chosen()); };
  const auto report = [&form, &app, chosen] {
    const wxString path = testReportPath(&form);
    if (path.empty()) return;
    app.output().writeAsioReport(app.files(), chosen(), app.settings().output, fromWx(path));
  };
  return form.addButtons({{"Control panel…", panel}, {"Test report…", report}});
}

// The system's own output with its devices, and each ASIO driver, which says itself what its buffers are
// like.
void addOutput(FormDialog& form, Application& app, OutputSettings& settings, std::vector<Taker>& takers) {
  const std::vector<std::string> asio = app.output().asioNames();
  wxArrayString drivers;
  drivers.Add("System");
  for (const std::string& name : asio) drivers.Add("ASIO: " + toWx(name));
  const bool usesAsio =
      settings.asio && settings.deviceId >= 0 && settings.deviceId < static_cast<int>(asio.size());
  const wxChoice* driver = form.addChoice("Driver", drivers, usesAsio ? settings.deviceId + 1 : 0);
  if (!usesAsio) settings.asio = false;
  std::vector<wxButton*> buttons;
  if (!asio.empty()) buttons = addAsioButtons(form, app, [driver] { return driver->GetSelection() - 1; });
  const FieldWithTaker device = addDevices(form, "Device", app.output().waveOutNames(), settings.deviceId);
  takers.push_back(device.take);
  takers.push_back(addNumbers(form, "Sample rate", "Hz", "AudioOutSampleRate", settings.sampleRate));
  takers.push_back(addNumbers(form, "Resolution", "bits", "AudioOutBitDepth", settings.bitDepth));
  const FieldWithTaker buffer = addBuffer(form, "AudioOutBufferSize(sample)", settings.bufferFrames);
  takers.push_back(buffer.take);
  takers.push_back([&settings, driver] {
    settings.asio = driver->GetSelection() > 0;
    if (settings.asio) settings.deviceId = driver->GetSelection() - 1;
  });
  form.onValues = [=](bool) {
    const bool chosen = driver->GetSelection() > 0;
    for (wxButton* button : buttons) button->Enable(chosen);
    device.window->Enable(!chosen);
    buffer.window->Enable(!chosen);
  };
}

void addInput(FormDialog& form, RecordingSettings& settings, std::vector<Taker>& takers) {
  std::string error;  // the output page shows the same lack of a sound server
  takers.push_back(
      addDevices(form, "Device", waveInDeviceNames(nativeWaveIn(), error), settings.deviceId).take);
  takers.push_back(addNumbers(form, "Sample rate", "Hz", "AudioInSampleRate", settings.sampleRate));
  takers.push_back(addNumbers(form, "Resolution", "bits", "AudioInBitDepth", settings.bitDepth));
  takers.push_back(addBuffer(form, "AudioInBufferSize(sample)", settings.bufferFrames).take);
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
  addOutput(form, app, output, takers);
  form.addPage("Input");
  addInput(form, input, takers);
  if (!form.ask()) return false;
  for (const Taker& take : takers) take();
  app.settings().output = output;
  app.settings().recording = input;
  return true;
}

}  // namespace plumetta
