// SPDX-License-Identifier: GPL-3.0-or-later
// The steps that build the rack and look at it.
#include "app/plugin_library.h"
#include "cli/edit_steps.h"
#include "cli/json.h"
#include "vst/plugin_list.h"

namespace plumetta {
namespace {

StepOutcome doneIf(bool done) { return done ? StepOutcome::done : StepOutcome::refused; }

// A number beyond all positions, programs and parameters stands for all that are too large.
int smallNumber(const StepArguments& arguments, size_t i) {
  constexpr int64_t kTooLarge = 1 << 30;
  const int64_t number = std::get<int64_t>(arguments[i]);
  return static_cast<int>(number < 0 || number > kTooLarge ? kTooLarge : number);
}

StepOutcome add(EditSession& session, const StepArguments& arguments) {
  const auto path = pluginPath(session.app, std::get<std::string>(arguments[0]));
  if (!path) return StepOutcome::refused;
  const RackAddition addition = session.app.rack().add(*path);
  if (!addition.message.empty()) session.app.prompter().message(addition.message);
  return doneIf(addition.position >= 0);
}

StepOutcome remove(EditSession& session, const StepArguments& arguments) {
  return doneIf(session.app.rack().remove(smallNumber(arguments, 0)));
}

StepOutcome mute(EditSession& session, const StepArguments& arguments) {
  Rack& rack = session.app.rack();
  const int position = smallNumber(arguments, 0);
  if (!rack.occupied(position)) return StepOutcome::refused;
  rack.setMuted(position, std::get<bool>(arguments[1]));
  return StepOutcome::done;
}

StepOutcome clear(EditSession& session, const StepArguments&) {
  session.app.rack().clear();
  return StepOutcome::done;
}

StepOutcome selectProgram(EditSession& session, const StepArguments& arguments) {
  return doneIf(session.app.rack().selectProgram(smallNumber(arguments, 0), smallNumber(arguments, 1)));
}

StepOutcome setParameter(EditSession& session, const StepArguments& arguments) {
  const double value = std::get<double>(arguments[2]);
  if (!(value >= 0.0 && value <= 1.0)) return StepOutcome::refused;
  return doneIf(session.app.rack().setParameter(smallNumber(arguments, 0), smallNumber(arguments, 1),
                                                static_cast<float>(value)));
}

void writePlugin(JsonWriter& json, const Rack& rack, int position) {
  const VstPlugin& plugin = *rack.pluginAt(position);
  const int slot = rack.slotAt(position);
  json.beginObject().key("position").value(position).key("slot").value(slot);
  json.key("path").value(plugin.path()).key("name").value(plugin.effectName());
  json.key("vendor").value(plugin.vendorName()).key("product").value(plugin.productName());
  json.key("uid").value(uniqueIdText(plugin.uniqueId())).key("muted").value(rack.isMuted(position));
  json.key("program").value(rack.programOf(slot)).key("parameters").beginArray();
  for (int i = 0; i < plugin.parameterCount(); ++i) {
    json.beginObject().key("name").value(plugin.parameterName(i)).key("value").value(plugin.parameter(i));
    json.key("display").value(plugin.parameterDisplay(i)).key("label").value(plugin.parameterLabel(i));
    json.endObject();
  }
  json.endArray().endObject();
}

StepOutcome printRack(EditSession& session, const StepArguments&) {
  const Rack& rack = session.app.rack();
  JsonWriter json;
  json.beginObject().key("positions").beginArray();
  for (int position = 0; position < rack.positionCount(); ++position) {
    if (rack.pluginAt(position) != nullptr) writePlugin(json, rack, position);
  }
  json.endArray().endObject();
  session.output += json.text() + "\n";
  return StepOutcome::done;
}

Parameter positional(const char* key, ParameterType type, ParameterValue fallback) {
  return {key, "", "", type, true, std::move(fallback), 0, 0, ""};
}
Parameter number(const char* key) { return positional(key, ParameterType::integer, int64_t{0}); }

}  // namespace

std::vector<EditStep> rackSteps() {
  return {
      {"rack-add", {positional("plugin", ParameterType::text, std::string{})}, false, add, nullptr},
      {"rack-remove", {number("pos")}, false, remove, nullptr},
      {"rack-mute",
       {number("pos"), positional("on|off", ParameterType::boolean, false)},
       false,
       mute,
       nullptr},
      {"rack-clear", {}, false, clear, nullptr},
      {"rack-program", {number("pos"), number("n")}, false, selectProgram, nullptr},
      {"rack-param",
       {number("pos"), number("index"), positional("value", ParameterType::real, 0.0)},
       false,
       setParameter,
       nullptr},
      {"rack-state", {}, false, printRack, nullptr},
  };
}

}  // namespace plumetta
