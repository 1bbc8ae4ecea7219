// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/text_export.h"

#include <algorithm>
#include <charconv>

#include "platform/text_file.h"

namespace plumetta {
namespace {

constexpr int32_t kFramesPerReport = 4096;
// The longest float in fixed notation: 39 digits, a sign, a point and six decimals.
constexpr size_t kLongestNumber = 64;

void writeSample(OutputStream& out, float sample) {
  char text[kLongestNumber];
  const auto end = std::to_chars(text, text + sizeof text - 1, sample, std::chars_format::fixed, 6).ptr;
  *end = '\t';
  out.write(text, static_cast<size_t>(end + 1 - text));
}

}  // namespace

SaveResult exportWaveAsText(FileSystem& files, const std::string& path, const CWave& wave, SyncToDisk sync) {
  return SaveResult::from(writeAtomically(files, path, sync, [&](OutputStream& out) {
    for (int32_t frame = 0; frame < wave.frames() && !out.failed(); ++frame) {
      for (int channel = 0; channel < wave.channels(); ++channel)
        writeSample(out, wave.sample(frame, channel));
      out.write(kTextLineEnd);
      const bool reports = frame % kFramesPerReport == 0;
      if (reports && !wave.progress.report(static_cast<float>(frame) / static_cast<float>(wave.frames()))) {
        return false;
      }
    }
    return true;
  }));
}

SaveResult writeTextFile(FileSystem& files, const std::string& path, const std::string& text) {
  return SaveResult::from(writeAtomically(files, path, SyncToDisk::yes, [&](OutputStream& out) {
    for (size_t start = 0; start < text.size();) {
      const size_t end = std::min(text.find('\n', start), text.size());
      out.write(std::string_view(text).substr(start, end - start));
      const bool carriesReturn = end > 0 && text[end - 1] == '\r';
      if (end < text.size()) out.write(carriesReturn ? "\n" : kTextLineEnd);
      start = end + 1;
    }
    return true;
  }));
}

}  // namespace plumetta
