// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a spectrum file: whatever loads is finite, saved, and loads again as the same.
#include <cmath>

#include "doc/spectrum_file.h"
#include "input_file.h"

using namespace plumetta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputFile files("in", data, size);
  SpectrumRecord record;
  if (loadSpectrum(files, "in", record).status != LoadStatus::loaded) return 0;
  require(record.values.size() <= size);
  for (const double value : record.values) require(std::isfinite(value));
  findPeaks(record, 6.0, 10);
  // A value near the largest double is beyond it once it is scaled.
  for (const double value : record.values) {
    if (!std::isfinite(value * 1000.0)) return 0;
  }
  require(saveSpectrum(files, "out", record).saved);
  SpectrumRecord again;
  require(loadSpectrum(files, "out", again).status == LoadStatus::loaded);
  require(again.channels == record.channels && again.lines == record.lines);
  for (size_t i = 0; i < record.values.size(); ++i) {
    const double tolerance = 1e-11 + 1e-14 * std::fabs(record.values[i]);
    require(std::fabs(again.values[i] - record.values[i]) <= tolerance);
  }
  return 0;
}
