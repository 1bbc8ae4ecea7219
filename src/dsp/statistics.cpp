// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/statistics.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "dsp/channel_scan.h"

namespace plumetta {
namespace {

constexpr const char* kSeparator = "\t-----------------------------------\r\n";

// printf into a string; our formats are all short but for file names, which go in as strings.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
  char text[160];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

std::string decibels(float value) {
  if (value == 0.0f) return "-inf";
  return formatted("%2.2f", 20.0 * std::log10(std::fabs(static_cast<double>(value))));
}

std::string levelText(float value) {
  return formatted("%2.2f%%\t(%s dB)\r\n", value * 100.0, decibels(value).c_str());
}

// One figure of the report: how it is labelled in files of one, two and more channels, and where it stands.
struct Figure {
  const char* mono;
  const char* left;
  const char* right;
  const char* many;  // with the channel's number
  float ChannelLevels::*value;
};

constexpr Figure kFigures[] = {
    {"\tRMS power :\t\t", "\tRMS power L:\t\t", "\tRMS power R:\t\t", "\tRMS power ch%d:\t\t",
     &ChannelLevels::rms},
    {"\tAverage value (DC offset) :\t", "\tAverage value L (DC offset):\t",
     "\tAverage value R (DC offset):\t", "\tAverage value %d (DC offset):\t", &ChannelLevels::mean},
    {"\tMin value :\t\t", "\tMin value L:\t\t", "\tMin value R:\t\t", "\tMin value ch%d:\t\t",
     &ChannelLevels::minimum},
    {"\tMax value :\t\t", "\tMax value L:\t\t", "\tMax value R:\t\t", "\tMax value ch%d:\t\t",
     &ChannelLevels::maximum},
};

std::string channelLabel(const Figure& figure, int channel) {
  std::string label = figure.many;
  return label.replace(label.find("%d"), 2, std::to_string(channel));
}

std::string levelSection(const std::vector<ChannelLevels>& levels) {
  std::string text = "Statistics:\r\n";
  const bool many = levels.size() > 2;
  if (many) text += kSeparator;
  for (const Figure& figure : kFigures) {
    for (size_t c = 0; c < levels.size(); ++c) {
      const char* few = levels.size() == 1 ? figure.mono : c == 0 ? figure.left : figure.right;
      text += many ? channelLabel(figure, static_cast<int>(c)) : few;
      text += levelText(levels[c].*figure.value);
    }
    if (many) text += kSeparator;
  }
  return text;
}

const char* formatLine(uint16_t tag) {
  switch (tag) {
    case kFormatPcm:
      return "\tFormat:\t\t\tPCM\r\n";
    case kFormatFloat:
      return "\tFormat:\t\t\tFLOAT\r\n";
    case kFormatMuLaw:
      return "\tFormat:\t\t\tULAW\r\n";
    case kFormatALaw:
      return "\tFormat:\t\t\tALAW\r\n";
    default:
      return "";
  }
}

std::string generalSection(const CWave& wave) {
  const int64_t rate = std::max<int64_t>(wave.sampleRate(), 1);
  const int64_t milliseconds = static_cast<int64_t>(wave.frames()) * 1000 / rate;
  const auto part = [&](int64_t unit, int64_t modulo) {
    return static_cast<int>(milliseconds / unit % modulo);
  };
  std::string text = "General information:\r\n\tSample name:\t\t" + wave.fileName() + "\r\n";
  text += formatted("\tChannel number:\t\t%d\r\n", wave.channels());
  text += formatted("\tSample number:\t\t%d\r\n", wave.frames());
  text += formatted("\tTotal duration:\t\t%2.2d:%2.2d:%2.2d:%3.3d\r\n", part(3600000, 1 << 30),
                    part(60000, 60), part(1000, 60), part(1, 1000));
  text += formatted("\tFrequency:\t\t%uHz\r\n", wave.sampleRate());
  text += formatted("\tBits per sample:\t\t%d\r\n", wave.bitsPerSample());
  return text + formatLine(wave.formatTag());
}

std::string selectionSection(int32_t from, int32_t to) {
  if (from == to) return {};
  return formatted("Selection:\r\n\tSelection start:\t\t%d\r\n\tSelection end:\t\t%d\r\n\tDelta:\t\t\t%d\r\n",
                   from, to, to - from + 1);
}

std::string annotationSections(const CWave& wave) {
  std::string text = "No loop points\r\n";
  if (wave.loops.hasLoops()) {
    text = formatted("Loop points:\r\n\tLoop start:\t\t%d\r\n\tLoop end:\t\t%d\r\n", wave.loops.start(0),
                     wave.loops.end(0));
  }
  text += wave.markers.empty() ? "No marker points\r\n"
                               : formatted("Marker points: %d markers\r\n", wave.markers.count());
  for (int i = 0; i < wave.markers.count(); ++i) {
    text += formatted("\tMarker %2.2d:\t\t%d\r\n", i, wave.markers[i].position);
  }
  if (!wave.envelope.active()) return text + "No automation points\r\n";
  text += "Automation points:\r\n";
  for (int c = 0; c < wave.envelope.channelCount(); ++c) {
    text += formatted("\tChannel %2.2d:\t\t%d points\r\n", c, wave.envelope.pointCount(c));
  }
  return text;
}

}  // namespace

const char* const kStatisticsFileHead =
    "Plumetta statistics and informations\n------------------------------------\n";

std::vector<ChannelLevels> analyzeLevels(const CWave& wave, int32_t from, int32_t to) {
  int32_t first = std::clamp(std::min(from, to), 0, wave.frames());
  int32_t end = std::clamp(std::max(from, to), 0, wave.frames());
  if (from == to) {
    first = 0;
    end = wave.frames();
  }
  const auto channels = static_cast<size_t>(wave.channels());
  const auto frames = static_cast<size_t>(end - first);
  if (frames == 0) return std::vector<ChannelLevels>(channels, {0, 0, 0, 0});
  const float* samples = wave.samples() + static_cast<size_t>(first) * channels;
  double sums[kMaxChannels] = {};
  double squares[kMaxChannels] = {};
  Extremes extremes[kMaxChannels];
  constexpr size_t kPiece = 4096;  // both scans find the samples in the cache
  for (size_t f = 0; f < frames; f += kPiece) {
    const size_t count = std::min(kPiece, frames - f);
    scanSums(samples + f * channels, count, channels, sums, squares);
    scanExtremes(samples + f * channels, count, channels, extremes);
  }
  std::vector<ChannelLevels> levels(channels);
  for (size_t c = 0; c < channels; ++c) {
    const auto count = static_cast<double>(frames);
    levels[c].rms = static_cast<float>(std::sqrt(squares[c] / count));
    levels[c].mean = static_cast<float>(sums[c] / count);
    levels[c].minimum = std::min(levels[c].minimum, extremes[c].smallest);
    levels[c].maximum = std::max(levels[c].maximum, extremes[c].largest);
  }
  return levels;
}

std::string statisticsReport(const CWave& wave, int32_t from, int32_t to, bool includeLevels) {
  std::string text;
  if (includeLevels) text = levelSection(analyzeLevels(wave, from, to));
  return text + generalSection(wave) + selectionSection(from, to) + annotationSections(wave);
}

}  // namespace plumetta
