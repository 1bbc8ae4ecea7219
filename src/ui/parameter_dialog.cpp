// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/parameter_dialog.h"

#include <wx/menuitem.h>

#include <functional>

#include "ui/form_dialog.h"
#include "ui/number_text.h"
#include "ui/text.h"

namespace plumetta {
namespace {

// A field on the screen: how its value is read once the dialog has been accepted, and stored for next time.
using ReadAndStore = std::function<ParameterValue()>;

struct Place {
  FormDialog& form;
  WindowProfile& profile;
  std::string section;
};

ReadAndStore addBoolean(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.key;
  const int stored = place.profile.integer(place.section, key, std::get<bool>(parameter.fallback) ? 1 : 0);
  wxCheckBox* box = place.form.addCheckBox(toWx(parameter.label), stored != 0);
  return [=, &profile = place.profile, section = place.section]() -> ParameterValue {
    profile.setInteger(section, key, box->GetValue() ? 1 : 0);
    return box->GetValue();
  };
}

ReadAndStore addNumber(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.key;
  const bool whole = parameter.type == ParameterType::integer;
  const double fallback = whole ? static_cast<double>(std::get<int64_t>(parameter.fallback))
                                : std::get<double>(parameter.fallback);
  const auto check = whole ? wholeNumberBetween(parameter.minimum, parameter.maximum, parameter.outOfBounds)
                           : numberBetween(parameter.minimum, parameter.maximum, parameter.outOfBounds);
  const std::string value = numberText(place.profile.real(place.section, key, fallback));
  wxTextCtrl* field = place.form.addText(toWx(parameter.label), toWx(parameter.unit), toWx(value), check);
  return [=, &profile = place.profile, section = place.section]() -> ParameterValue {
    const double number = checkedNumber(*field);
    profile.setReal(section, key, number);
    if (whole) return static_cast<int64_t>(number);
    return number;
  };
}

ReadAndStore addWords(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.key;
  const std::string value = place.profile.text(place.section, key, std::get<std::string>(parameter.fallback));
  wxTextCtrl* field = place.form.addText(toWx(parameter.label), toWx(parameter.unit), toWx(value), {});
  return [=, &profile = place.profile, section = place.section]() -> ParameterValue {
    std::string words = fromWx(field->GetValue());
    profile.setText(section, key, words);
    return words;
  };
}

ReadAndStore addFrame(const Place& place, const Parameter& parameter) {
  const std::string key = parameter.key;
  const std::string unitKey = key + " in seconds";
  const auto fallback = std::get<FrameOrTime>(parameter.fallback);
  wxArrayString units;
  units.Add("frames");
  units.Add("seconds");
  const int unit = place.profile.integer(place.section, unitKey, fallback.inSeconds ? 1 : 0) == 1 ? 1 : 0;
  const std::string value = numberText(place.profile.real(place.section, key, fallback.value));
  const auto field = place.form.addNumberWithUnits(toWx(parameter.label), toWx(value), units, unit,
                                                   numberBetween(0, kMaxFrames));
  return [=, &profile = place.profile, section = place.section]() -> ParameterValue {
    const FrameOrTime result{checkedNumber(*field.number), field.unit->GetSelection() == 1};
    profile.setReal(section, key, result.value);
    profile.setInteger(section, unitKey, result.inSeconds ? 1 : 0);
    return result;
  };
}

ReadAndStore addField(const Place& place, const Parameter& parameter) {
  switch (parameter.type) {
    case ParameterType::boolean:
      return addBoolean(place, parameter);
    case ParameterType::text:
      return addWords(place, parameter);
    case ParameterType::frame:
      return addFrame(place, parameter);
    case ParameterType::integer:
    case ParameterType::real:
      break;
  }
  return addNumber(place, parameter);
}

}  // namespace

std::optional<Arguments> askParameters(wxWindow* parent, const Command& command, WindowProfile& profile) {
  FormDialog form(parent, wxMenuItem::GetLabelText(toWx(command.menuText)));
  std::vector<ReadAndStore> fields;
  for (const Parameter& parameter : command.parameters) {
    fields.push_back(addField({form, profile, command.id}, parameter));
  }
  if (!form.ask()) return std::nullopt;
  Arguments arguments;
  for (const ReadAndStore& field : fields) arguments.push_back(field());
  return arguments;
}

}  // namespace plumetta
