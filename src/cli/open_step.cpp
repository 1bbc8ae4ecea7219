// SPDX-License-Identifier: GPL-3.0-or-later
// The step `open`, whose options say how the samples stand in a file without a header.
#include <algorithm>
#include <limits>

#include "cli/edit_steps.h"
#include "formats/raw_file.h"
#include "platform/paths.h"

namespace plumetta {
namespace {

enum Place { kFile, kRate, kChannels, kBits, kOrder, kSign, kOffset };

int64_t integerOf(const StepArguments& arguments, Place place) { return std::get<int64_t>(arguments[place]); }

std::optional<SampleFormat> sampleOf(const StepArguments& arguments) {
  const auto bits = static_cast<int>(std::clamp<int64_t>(integerOf(arguments, kBits), 0, 65));
  return rawSampleFormat(bits, integerOf(arguments, kOrder) == 0 ? ByteOrder::little : ByteOrder::big,
                         static_cast<RawSign>(integerOf(arguments, kSign)));
}

std::string openFault(const StepArguments& arguments) {
  const int64_t rate = integerOf(arguments, kRate);
  const int64_t channels = integerOf(arguments, kChannels);
  if (rate < 1 || rate > std::numeric_limits<uint32_t>::max()) return "rate is out of range";
  if (channels < 1 || channels > kMaxChannels) return "channels is out of range";
  if (integerOf(arguments, kOffset) < 0) return "offset is out of range";
  return sampleOf(arguments) ? "" : "no samples have these bits and this sign";
}

// Set when the call says how the samples stand in the file: it is raw then, whatever is in it.
std::optional<RawLayout> rawLayoutOf(const StepArguments& arguments) {
  if (std::none_of(arguments.given.begin() + kRate, arguments.given.end(), [](bool g) { return g; })) {
    return std::nullopt;
  }
  RawLayout layout;
  layout.sampleRate = static_cast<uint32_t>(integerOf(arguments, kRate));
  layout.channels = static_cast<int>(integerOf(arguments, kChannels));
  layout.sample = *sampleOf(arguments);
  layout.fileOffset = static_cast<uint64_t>(integerOf(arguments, kOffset));
  return layout;
}

StepOutcome open(EditSession& session, const StepArguments& arguments) {
  OpenOptions options;
  options.raw = rawLayoutOf(arguments);
  FileOutcome outcome{};
  const std::string path = absolutePath(std::get<std::string>(arguments[kFile]));
  CPlumettaDoc* opened = session.app.openDocument(path, outcome, options);
  if (opened != nullptr) session.doc = opened;
  return outcomeOf(outcome);
}

}  // namespace

EditStep openStep() {
  const auto number = [](const char* key, int64_t fallback, const char* words = "") {
    Parameter parameter{key, "", "", ParameterType::integer, false, fallback, 0, 0, ""};
    parameter.words = words;
    return parameter;
  };
  const RawLayout usual;
  return {"open",
          {{"file", "", "", ParameterType::text, true, std::string{}, 0, 0, ""},
           number("rate", usual.sampleRate),
           number("channels", usual.channels),
           number("bits", 16),
           number("order", 0, "little|big"),
           number("sign", 0, "signed|unsigned|float"),
           number("offset", 0)},
          false,
          open,
          nullptr,
          openFault};
}

}  // namespace plumetta
