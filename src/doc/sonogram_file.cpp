// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/sonogram_file.h"

#include <algorithm>
#include <charconv>

#include "formats/atomic_file.h"
#include "platform/text_file.h"

namespace plumetta {
namespace {

// What stands in memory at once, in levels.
constexpr int64_t kLevelsAtOnce = int64_t{1} << 20;

template <class Number>
void writeNumber(OutputStream& out, Number number) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, number).ptr;
  out.write(text, static_cast<size_t>(end - text));
}

void writeHead(OutputStream& out, const SpectrumSettings& spectrum, double sampleRate) {
  out.write("frame,channel");
  for (int line = 0; line <= spectrum.size / 2; ++line) {
    out.write(",");
    writeNumber(out, line * sampleRate / spectrum.size);
  }
  out.write(kTextLineEnd);
}

void writeColumns(OutputStream& out, const Sonogram& sonogram) {
  const SonogramPlan& plan = sonogram.plan();
  for (int column = 0; column < plan.columns; ++column) {
    for (int plane = 0; plane < plan.planes(); ++plane) {
      writeNumber(out, static_cast<int64_t>(plan.middleOf(column)));
      out.write(",");
      writeNumber(out, plan.channels[static_cast<size_t>(plane)]);
      for (size_t line = 0; line < sonogram.lines(); ++line) {
        out.write(",");
        writeNumber(out, static_cast<float>(sonogram.amplitude(plane, column, line)));
      }
      out.write(kTextLineEnd);
    }
  }
}

}  // namespace

std::vector<int> activeChannels(const CWave& wave) {
  std::vector<int> channels;
  for (int channel = 0; channel < wave.channels(); ++channel) {
    if (wave.isActive(channel)) channels.push_back(channel);
  }
  return channels;
}

SaveResult saveSonogram(FileSystem& files, const std::string& path, const CWave& wave, FrameRange range,
                        const SonogramFileSettings& settings) {
  SonogramPlan plan;
  plan.framesPerColumn = settings.hop;
  plan.spectrum = settings.spectrum;
  plan.channels = activeChannels(wave);
  const auto planes = static_cast<int64_t>(plan.channels.size());
  const bool empty = wave.frames() == 0 || planes == 0;
  const int64_t columns = empty ? 0 : (int64_t{range.length()} - 1) / settings.hop + 1;
  const int64_t columnsAtOnce =
      std::max<int64_t>(kLevelsAtOnce / (settings.spectrum.size / 2 + 1) / std::max<int64_t>(planes, 1), 1);
  return SaveResult::from(writeAtomically(files, path, SyncToDisk::yes, [&](OutputStream& out) {
    writeHead(out, settings.spectrum, wave.sampleRate());
    for (int64_t column = 0; column < columns && !out.failed(); column += columnsAtOnce) {
      plan.columns = static_cast<int>(std::min(columnsAtOnce, columns - column));
      plan.firstFrame = range.first + (static_cast<double>(column) - 0.5) * settings.hop;
      Sonogram sonogram(wave, plan);
      while (sonogram.advance(wave)) {
      }
      writeColumns(out, sonogram);
      const double done = static_cast<double>(column + plan.columns) / static_cast<double>(columns);
      if (!wave.progress.report(static_cast<float>(done))) return false;
    }
    return true;
  }));
}

}  // namespace plumetta
