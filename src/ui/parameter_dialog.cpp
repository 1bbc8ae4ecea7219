// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/parameter_dialog.h"

#include <wx/menuitem.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "ui/curve_plot.h"
#include "ui/form_dialog.h"
#include "ui/number_text.h"
#include "ui/text.h"

namespace plumetta {
namespace {

// A field on the screen: how its value is read, and stored for next time.
struct ParameterField {
  std::function<ParameterValue()> read;
  std::function<void(const ParameterValue&)> store;
};

struct Place {
  FormDialog& form;
  WindowProfile& profile;
  std::string section;
};

ParameterField addBoolean(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.storedAs();
  const int stored = place.profile.integer(place.section, key, std::get<bool>(parameter.fallback) ? 1 : 0);
  wxCheckBox* box = place.form.addCheckBox(toWx(parameter.label), stored != 0);
  return {[box]() -> ParameterValue { return box->GetValue(); },
          [place, key](const ParameterValue& value) {
            place.profile.setInteger(place.section, key, std::get<bool>(value) ? 1 : 0);
          }};
}

ParameterField addInteger(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.storedAs();
  const auto fallback = static_cast<double>(std::get<int64_t>(parameter.fallback));
  const std::string value = numberText(place.profile.real(place.section, key, fallback));
  wxTextCtrl* field =
      place.form.addText(toWx(parameter.label), toWx(parameter.unit), toWx(value),
                         wholeNumberBetween(parameter.minimum, parameter.maximum, parameter.outOfBounds));
  return {[field]() -> ParameterValue { return static_cast<int64_t>(checkedNumber(*field)); },
          [place, key](const ParameterValue& given) {
            place.profile.setText(place.section, key, std::to_string(std::get<int64_t>(given)));
          }};
}

ParameterField addReal(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.storedAs();
  const std::string value =
      numberText(place.profile.real(place.section, key, std::get<double>(parameter.fallback)));
  wxTextCtrl* field =
      place.form.addText(toWx(parameter.label), toWx(parameter.unit), toWx(value),
                         numberBetween(parameter.minimum, parameter.maximum, parameter.outOfBounds));
  return {[field]() -> ParameterValue { return checkedNumber(*field); },
          [place, key](const ParameterValue& given) {
            place.profile.setReal(place.section, key, std::get<double>(given));
          }};
}

int indexOf(const std::vector<ParameterChoice>& choices, int64_t value) {
  const auto found = std::ranges::find(choices, value, &ParameterChoice::value);
  return found != choices.end() ? static_cast<int>(found - choices.begin()) : -1;
}

// A stored value that is not among the choices, say a channel of a larger file, leaves the fallback.
ParameterField addChoices(const Place& place, const Parameter& parameter,
                          std::vector<ParameterChoice> choices) {
  const std::string key = parameter.storedAs();
  const auto fallback = std::get<int64_t>(parameter.fallback);
  const int stored = place.profile.integer(place.section, key, static_cast<int>(fallback));
  wxArrayString labels;
  for (const ParameterChoice& choice : choices) labels.Add(toWx(choice.label));
  const int selected = indexOf(choices, indexOf(choices, stored) >= 0 ? stored : fallback);
  wxChoice* field = place.form.addChoice(toWx(parameter.label), labels, selected, toWx(parameter.unit));
  return {[field, choices]() -> ParameterValue {
            return choices[static_cast<size_t>(field->GetSelection())].value;
          },
          [place, key](const ParameterValue& given) {
            place.profile.setText(place.section, key, std::to_string(std::get<int64_t>(given)));
          }};
}

ParameterField addWords(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.storedAs();
  const std::string value = place.profile.text(place.section, key, std::get<std::string>(parameter.fallback));
  wxTextCtrl* field = place.form.addText(toWx(parameter.label), toWx(parameter.unit), toWx(value), {});
  return {[field]() -> ParameterValue { return fromWx(field->GetValue()); },
          [place, key](const ParameterValue& given) {
            place.profile.setText(place.section, key, std::get<std::string>(given));
          }};
}

ParameterField addFrame(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.storedAs();
  const std::string unitKey = key + " in seconds";
  const auto fallback = std::get<FrameOrTime>(parameter.fallback);
  wxArrayString units;
  units.Add("frames");
  units.Add("seconds");
  const int unit = place.profile.integer(place.section, unitKey, fallback.inSeconds ? 1 : 0) == 1 ? 1 : 0;
  const std::string value = numberText(place.profile.real(place.section, key, fallback.value));
  const auto field = place.form.addNumberWithUnits(toWx(parameter.label), toWx(value), units, unit,
                                                   numberBetween(0, kMaxFrames));
  return {[field]() -> ParameterValue {
            return FrameOrTime{checkedNumber(*field.number), field.unit->GetSelection() == 1};
          },
          [place, key, unitKey](const ParameterValue& given) {
            const auto& position = std::get<FrameOrTime>(given);
            place.profile.setReal(place.section, key, position.value);
            place.profile.setInteger(place.section, unitKey, position.inSeconds ? 1 : 0);
          }};
}

ParameterField addField(const Place& place, const Parameter& parameter, const CPlumettaDoc& doc) {
  switch (parameter.type) {
    case ParameterType::boolean:
      return addBoolean(place, parameter);
    case ParameterType::text:
      return addWords(place, parameter);
    case ParameterType::frame:
      return addFrame(place, parameter);
    case ParameterType::real:
      return addReal(place, parameter);
    case ParameterType::integer:
      break;
  }
  return parameter.choices != nullptr ? addChoices(place, parameter, parameter.choices(doc))
                                      : addInteger(place, parameter);
}

Arguments readAll(const std::vector<ParameterField>& fields) {
  Arguments arguments;
  for (const ParameterField& field : fields) arguments.push_back(field.read());
  return arguments;
}

// Shows what a filter with these values does to each frequency, drawn again with every change; grey while
// some value can't be taken.
void addResponse(FormDialog& form, const std::vector<ParameterField>& fields, CPlumettaDoc& doc,
                 const Command& command) {
  constexpr double kLowestHz = 20.0;
  constexpr double kTopDb = 12.0, kBottomDb = -96.0;
  auto* plot = new CurvePlot(&form);
  plot->SetMinSize(form.FromDIP(wxSize(440, 200)));
  plot->setDecibels(kBottomDb, kTopDb);
  plot->setFrequencies({kLowestHz, std::max(doc.wave().sampleRate() / 2.0, 2 * kLowestHz), true});
  const auto draw = [plot, &fields, &doc, &command](bool allGood) {
    plot->setDimmed(!allGood);
    if (!allGood) return;
    PlotCurve curve;
    curve.colour = plot->theme().curves.front();
    const auto call = std::make_shared<CommandCall>(doc, command, readAll(fields));
    curve.levelDb = [call](double hz) { return call->command.responseDb(*call, hz); };
    plot->setCurves({curve});
  };
  plot->onThemeChanged = [plot, draw] { draw(!plot->dimmed()); };
  form.setPicture(plot);
  form.onValues = draw;
}

}  // namespace

std::optional<Arguments> askParameters(wxWindow* parent, CPlumettaDoc& doc, const Command& command,
                                       WindowProfile& profile) {
  FormDialog form(parent, wxMenuItem::GetLabelText(toWx(command.menuText)));
  std::vector<ParameterField> fields;
  for (const Parameter& parameter : command.parameters) {
    fields.push_back(addField({form, profile, command.storedIn()}, parameter, doc));
  }
  if (command.check != nullptr) {
    form.checkAll = [&]() -> std::string {
      CommandCall call(doc, command, readAll(fields));
      const auto refusal = command.check(call);
      return refusal ? refusal->message : std::string();
    };
  }
  if (command.responseDb != nullptr) addResponse(form, fields, doc, command);
  if (!form.ask()) return std::nullopt;
  Arguments arguments = readAll(fields);
  for (size_t i = 0; i < fields.size(); ++i) fields[i].store(arguments[i]);
  return arguments;
}

}  // namespace plumetta
