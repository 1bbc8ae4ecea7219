// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/asio_report.h"

#include <cstdarg>
#include <cstdio>

#include "audio/asio_sample_type.h"

namespace plumetta {
namespace {

[[gnu::format(printf, 2, 3)]] void append(std::string& text, const char* format, ...) {
  char piece[256];
  std::va_list values;
  va_start(values, format);
  std::vsnprintf(piece, sizeof piece, format, values);
  va_end(values);
  text += piece;
}

constexpr const char* kRule = "*************************************\n";

void appendChannel(std::string& text, int index, const AsioChannelInfo& channel) {
  append(text, "%s", channel.isInput != 0 ? "input  " : "output ");
  append(text, "%2.2d %s ", index, channel.name);
  append(text, "Sample type: %s ", asioSampleTypeName(channel.sampleType));
  append(text, "Group: %d\n", channel.group);
}

}  // namespace

std::string asioReport(const AsioDriverInfo& info) {
  std::string text = "Plumetta ASIO test file:\n";
  append(text, "%s\n", info.name.c_str());
  append(text, "Version:%4.4X\n", static_cast<unsigned>(info.version));
  append(text, "Error: %s\n", info.errorMessage.c_str());
  append(text, "Buffer min size: %d\n", info.minimumFrames);
  append(text, "Buffer max size: %d\n", info.maximumFrames);
  append(text, "Buffer pref size: %d\n", info.preferredFrames);
  append(text, "Buffer granular: %d\n", info.granularity);
  append(text, "Sample rate: %f\n", info.sampleRate);
  append(text, "Input channel: %d\n", info.inputs);
  append(text, "Output channel: %d\n", info.outputs);
  append(text, "Input latency: %d\n", info.inputLatency);
  append(text, "Output latency: %d\n", info.outputLatency);
  text += kRule;
  int index = 0;
  for (const AsioChannelInfo& channel : info.channels) appendChannel(text, index++, channel);
  return text + kRule;
}

}  // namespace plumetta
