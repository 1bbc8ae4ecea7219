// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/wave.h"
#include "core/work_crew.h"
#include "dsp/frame_range.h"
#include "dsp/strip_spectra.h"

namespace plumetta {

// Levels of every channel along frequency. As computed here a level is the amplitude of a sine at that line,
// full scale 1.0; a file may hold any other quantity.
struct SpectrumRecord {
  int32_t channels = 0;
  int32_t lines = 0;
  double startHz = 0.0;  // of the first line
  double stopHz = 0.0;   // of the last
  double sampleRate = 0.0;
  std::vector<double> values;  // lines × channels: line i, channel c at i × channels + c

  double value(int32_t line, int32_t channel) const {
    return values[static_cast<size_t>(line) * static_cast<size_t>(channels) + static_cast<size_t>(channel)];
  }
  double hzPerLine() const { return lines > 1 ? (stopHz - startHz) / (lines - 1) : 0.0; }
  // `line` may lie between two.
  double hz(double line) const { return startHz + line * hzPerLine(); }
};

// The averaged spectrum of a range of a buffer, made in short pieces: the power of blocks that don't overlap,
// the last one filled up with silence, averaged and scaled so that a sine at a line reads its amplitude
// whatever the window. A constant reads its value; what is not a number counts as silence. The result is the
// same to the last bit however many cores there are.
class SpectrumAverage {
 public:
  // `range` is ordered and lies in `wave`; an empty buffer gives a spectrum of silence.
  SpectrumAverage(const CWave& wave, FrameRange range, SpectrumSettings settings);

  // Takes the next few milliseconds' worth of blocks of the same buffer, unchanged since. False once there
  // are no more.
  bool advance(const CWave& wave);
  double fractionDone() const;
  // Of the blocks so far.
  SpectrumRecord record() const;

 private:
  void sumPart(const CWave& wave, int64_t firstBlock, StripSpectra::Bench& bench,
               std::vector<double>& power) const;
  // Lists the strips of these blocks, the channels of one block side by side.
  int listStrips(int64_t firstBlock, int64_t endBlock, StripSpectra::Strip* strips) const;

  int size_;
  FrameRange range_;
  int channels_;
  double sampleRate_;
  int64_t blocks_, blocksPerGroup_, blocksPerPart_;
  int64_t nextBlock_ = 0;
  StripSpectra spectra_;
  std::vector<double> power_;               // lines × channels
  std::vector<std::vector<double>> parts_;  // the same, of each part of a round
  WorkCrew crew_;
  std::vector<StripSpectra::Bench> benches_;
};

// All of it at once. None when `progress` has stopped it.
std::optional<SpectrumRecord> averagedSpectrum(const CWave& wave, FrameRange range, SpectrumSettings settings,
                                               const WaveProgress& progress);

// Amplitude in decibels; silence is at -400.
double spectrumDb(double amplitude);

struct SpectrumPeak {
  double hz;
  double db;
  int32_t channel;
};

// The local maxima that stand at least `prominenceDb` above the lowest level between them and whatever is
// louder on either side, loudest first, at most `most`. Several channels are taken for their loudest, line by
// line. Between lines by the parabola through a maximum and its neighbours in decibels (J. O. Smith,
// Spectral Audio Signal Processing, 2011, "Quadratic Interpolation of Spectral Peaks").
std::vector<SpectrumPeak> findPeaks(const SpectrumRecord& record, double prominenceDb, size_t most);

// The nearest note of the equal temperament with A4 at 440 Hz and how far off it is: "A4 +3 cents", "A4" for
// none. Empty below 8 Hz, where no note has a name, and for what is no frequency.
std::string noteName(double hz);

}  // namespace plumetta
