// SPDX-License-Identifier: GPL-3.0-or-later
// Commands with a level in dB, and the bit depth converter.
#include <bit>

#include "doc/command_groups.h"
#include "dsp/amplitude.h"
#include "dsp/bit_depth.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr double kLowestDb = -200.0;
constexpr double kHighestDb = 200.0;

std::vector<Parameter> levelParameter(double fallback) {
  return {{"Level", "Level", "dB", ParameterType::real, true, fallback, kLowestDb, kHighestDb,
           "The level must lie between -200 and 200 dB"}};
}

std::optional<UndoKind> selectionOrFile(CommandCall& call) {
  return call.doc.view().hasSelection() ? UndoKind::selection : UndoKind::wholeFile;
}

std::optional<Refusal> runNormalize(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrAll();
  normalize(call.doc.wave(), {first, last}, call.real(0));
  return std::nullopt;
}

std::optional<Refusal> runVolume(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrPoint();
  volume(call.doc.wave(), {first, last}, gainOfLevel(call.real(0)));
  return std::nullopt;
}

std::optional<Refusal> runTruncate(CommandCall& call) {
  clip(call.doc.wave(), {0, call.doc.lastFrame()}, call.real(0));
  return std::nullopt;
}

// The level goes in where the format wants an integer: its low 32 bits are what the history shows, kept so.
std::string truncateName(CommandCall& call) {
  return formatted("Truncate %ddB", static_cast<int32_t>(std::bit_cast<uint64_t>(call.real(0))));
}

// ---- Bit depth ------------------------------------------------------------------------------------------

enum BitDepthArgument : size_t { kBits, kFormat, kQuantization, kDithering, kDitherType };

std::optional<Refusal> checkBitDepth(CommandCall& call) {
  const int64_t bits = call.integer(kBits);
  const int64_t format = call.integer(kFormat);
  if (bits != 8 && bits != 16 && bits != 24 && bits != 32 && bits != 64) {
    return Refusal{"The bit depth must be 8, 16, 24, 32 or 64"};
  }
  const bool companded = format == kFormatALaw || format == kFormatMuLaw;
  if (format != kFormatPcm && format != kFormatFloat && !companded) {
    return Refusal{"The format must be 1 (integer), 3 (float), 6 (A-law) or 7 (\xC2\xB5-law)"};
  }
  if (companded && bits != 8) return Refusal{"A-law and \xC2\xB5-law have 8 bits"};
  return std::nullopt;
}

std::optional<UndoKind> bitDepthUndo(CommandCall& call) {
  return call.boolean(kQuantization) ? UndoKind::layout : UndoKind::annotations;
}

std::optional<Refusal> runBitDepth(CommandCall& call) {
  CWave& wave = call.doc.wave();
  const auto bits = static_cast<int>(call.integer(kBits));
  if (call.boolean(kQuantization)) {
    if (call.boolean(kDithering) && bits < wave.bitsPerSample()) {
      addDither(wave, bits, static_cast<DitherType>(call.integer(kDitherType)));
    }
    quantize(wave, bits);
  }
  wave.setBitsPerSample(bits);
  wave.setFormatTag(static_cast<uint16_t>(call.integer(kFormat)));
  return std::nullopt;
}

std::vector<ParameterChoice> bitDepths(const CPlumettaDoc&) {
  return {{8, "8"}, {16, "16"}, {24, "24"}, {32, "32"}, {64, "64"}};
}

std::vector<ParameterChoice> sampleFormats(const CPlumettaDoc&) {
  return {
      {kFormatPcm, "PCM"}, {kFormatFloat, "Float"}, {kFormatALaw, "A-law"}, {kFormatMuLaw, "\xC2\xB5-law"}};
}

std::vector<ParameterChoice> ditheringTypes(const CPlumettaDoc&) {
  return {{0, "Half a step"}, {1, "One step"}};
}

std::vector<Parameter> bitDepthParameters() {
  return {
      {"bits", "Bits per sample", "", ParameterType::integer, true, int64_t{8}, 0, 64,
       "The bit depth must be 8, 16, 24, 32 or 64", "Bits per sample", bitDepths},
      {"format", "Format", "", ParameterType::integer, false, int64_t{1}, 0, 65535, "", "Format",
       sampleFormats},
      {"quantization", "Quantization", "", ParameterType::boolean, false, true, 0, 1, "", "Quantization"},
      {"dithering", "Dithering", "", ParameterType::boolean, false, true, 0, 1, "", "Dithering"},
      {"type", "Dithering type", "", ParameterType::integer, false, int64_t{0}, 0, 1,
       "The dithering type must be 0 (half a step) or 1 (one step)", "Dithering type", ditheringTypes},
  };
}

}  // namespace

std::vector<Command> levelCommands() {
  return {
      {"normalize", "&Normalize", "Ctrl+Shift+N", Menu::normalize, levelParameter(-3.0), nullptr,
       selectionOrFile, Lock::turns, runNormalize,
       [](CommandCall& call) { return formatted("Normalize %2.2fdB", call.real(0)); }, Changes::samples, 0,
       "Normalize"},
      {"volume", "&Volume", "", Menu::process, levelParameter(3.0), nullptr, undoAs<UndoKind::selection>,
       Lock::turns, runVolume, [](CommandCall& call) { return formatted("Volume %2.2fdB", call.real(0)); },
       Changes::samples, 0, "Volumize"},
      {"truncate", "&Truncate", "", Menu::process, levelParameter(-3.0), nullptr, undoAs<UndoKind::wholeFile>,
       Lock::turns, runTruncate, truncateName, Changes::samples, 0, "Truncate"},
      {"bit-depth", "&Bit depth converter", "", Menu::process, bitDepthParameters(), checkBitDepth,
       bitDepthUndo, Lock::turns, runBitDepth,
       [](CommandCall&) -> std::string { return "Bit depth convertion"; }, Changes::samples, 0,
       "Bit depth converter"},
  };
}

}  // namespace plumetta
