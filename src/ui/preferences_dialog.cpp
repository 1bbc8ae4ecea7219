// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/preferences_dialog.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "ui/form_dialog.h"
#include "ui/number_text.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr int kTextWidth = 320;

// Takes a field's value over into the settings.
using Taker = std::function<void()>;

FormDialog::Check acceptedBy(const SettingRow& row, bool whole) {
  return [&row, whole](const std::string& text) -> std::string {
    const auto number = parseNumber(text);
    if (!number) return "This is not a number.";
    if (whole && *number != std::floor(*number)) return "A whole number is needed.";
    const Preference& bounds = row.preference;
    const bool wanted = *number >= bounds.minimum && *number <= bounds.maximum;
    if (wanted && acceptsNumber(row, *number)) return {};
    if (whole) return "From " + numberText(row.minimum) + " to " + numberText(row.maximum) + ".";
    return *number < std::max(row.minimum, bounds.minimum) ? "This is too small." : "This is too large.";
  };
}

Taker addChoices(FormDialog& form, const SettingRow& row, int& value) {
  wxArrayString labels;
  int selected = 0;
  for (size_t i = 0; i < row.choices.size(); ++i) {
    labels.Add(toWx(row.choices[i].label));
    if (row.choices[i].value == value) selected = static_cast<int>(i);
  }
  wxChoice* field = form.addChoice(toWx(row.preference.label), labels, selected);
  return [&value, &row, field] { value = row.choices[static_cast<size_t>(field->GetSelection())].value; };
}

wxTextCtrl* addNumber(FormDialog& form, const SettingRow& row, double value, bool whole) {
  return form.addText(toWx(row.preference.label), toWx(row.preference.unit), toWx(numberText(value)),
                      acceptedBy(row, whole));
}

Taker addRow(FormDialog& form, const SettingRow& row, Settings& settings) {
  if (const auto* boolean = std::get_if<BooleanPlace>(&row.place)) {
    bool& value = (*boolean)(settings);
    wxCheckBox* field = form.addCheckBox(toWx(row.preference.label), value);
    return [&value, field] { value = field->GetValue(); };
  }
  if (const auto* real = std::get_if<RealPlace>(&row.place)) {
    double& value = (*real)(settings);
    wxTextCtrl* field = addNumber(form, row, value, false);
    return [&value, field] { value = checkedNumber(*field); };
  }
  if (const auto* text = std::get_if<PathPlace>(&row.place)) {
    std::string& value = (*text)(settings);
    wxTextCtrl* field = form.addText(toWx(row.preference.label), wxString(), toWx(value),
                                     [&row](const std::string& typed) { return problemOfText(row, typed); });
    field->SetMinSize(field->FromDIP(wxSize(kTextWidth, -1)));
    return [&value, field] { value = fromWx(field->GetValue()); };
  }
  int& value = std::get<IntegerPlace>(row.place)(settings);
  if (!row.choices.empty()) return addChoices(form, row, value);
  wxTextCtrl* field = addNumber(form, row, value, true);
  return [&value, field] { value = static_cast<int>(checkedNumber(*field)); };
}

}  // namespace

bool askPreferences(wxWindow* parent, Settings& settings) {
  constexpr struct {
    PreferencePage page;
    const char* title;
  } kPages[] = {{PreferencePage::general, "General"},
                {PreferencePage::display, "Display"},
                {PreferencePage::editing, "Editing"},
                {PreferencePage::plugins, "Plug-ins"},
                {PreferencePage::network, "Network"}};
  FormDialog form(parent, "Preferences");
  std::vector<Taker> takers;
  for (const auto& [page, title] : kPages) {
    form.addPage(title);
    for (const SettingRow& row : settingRows()) {
      if (row.preference.page == page) takers.push_back(addRow(form, row, settings));
    }
  }
  if (!form.ask()) return false;
  for (const Taker& take : takers) take();
  return true;
}

}  // namespace plumetta
