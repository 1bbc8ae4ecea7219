// SPDX-License-Identifier: GPL-3.0-or-later
// The one-click effects: a row each with its range, its menu text and its routine.
#include <array>
#include <cassert>

#include "doc/command_groups.h"
#include "dsp/amplitude.h"
#include "dsp/synthesis.h"

namespace plumetta {
namespace {

using Lock = Command::Lock;

// What an effect works on: with a selection the selection, unless it is `wholeFile`.
enum class Without {
  skipped,    // without a selection nothing happens at all
  cursor,     // the frame at the cursor
  nothing,    // recorded and named, but no sample changes
  all,        // the whole file
  wholeFile,  // the whole file, selection or not; also loop and cursor effects, which find their own place
};

struct QuickEffect {
  const char* menuText;
  Without without;
  void (*run)(CWave& wave, FrameRange range, int32_t cursor);
};

template <FadeCurve curve, FadeDirection direction>
void runFade(CWave& wave, FrameRange range, int32_t) {
  fade(wave, range, curve, direction);
}

// Tenths of a dB, since a template takes no fractions before GCC 13 does so everywhere.
template <int tenthsOfDb>
void runNormalize(CWave& wave, FrameRange range, int32_t) {
  normalize(wave, range, tenthsOfDb / 10.0);
}

template <int wholeDb>
void runClip(CWave& wave, FrameRange range, int32_t) {
  clip(wave, range, wholeDb);
}

template <bool (*routine)(CWave&, FrameRange)>
void runRoutine(CWave& wave, FrameRange range, int32_t) {
  routine(wave, range);
}

void mute(CWave& wave, FrameRange range, int32_t) { volume(wave, range, 0.0f); }
void halve(CWave& wave, FrameRange range, int32_t) { volume(wave, range, 0.5f); }
void twice(CWave& wave, FrameRange range, int32_t) { volume(wave, range, 2.0f); }
void crossfadeWhole(CWave& wave, FrameRange, int32_t) { crossfadeLoop(wave, 1.0); }
void crossfadeHalf(CWave& wave, FrameRange, int32_t) { crossfadeLoop(wave, 0.5); }
void dirac(CWave& wave, FrameRange, int32_t cursor) { setDirac(wave, cursor); }
void step(CWave& wave, FrameRange, int32_t cursor) { setStep(wave, cursor); }
void impulses(CWave& wave, FrameRange, int32_t) { synthesize(wave, SynthesisType::impulseTrain, 1.0f); }
void sweepExp(CWave& wave, FrameRange, int32_t) { synthesize(wave, SynthesisType::sweepExponential, 0.5f); }
void sweepLinear(CWave& wave, FrameRange, int32_t) { synthesize(wave, SynthesisType::sweepLinear, 0.5f); }
void applyEnvelope(CWave& wave, FrameRange, int32_t) { applyVolumeEnvelope(wave); }

using enum FadeCurve;
constexpr auto in = FadeDirection::in;
constexpr auto out = FadeDirection::out;

// By effect number, as in `EffectNames`.
constexpr std::array<QuickEffect, 34> kQuickEffects{{
    {"Fade in &linear", Without::skipped, runFade<linear, in>},
    {"Fade &out linear", Without::skipped, runFade<linear, out>},
    {"Fade in &exponential", Without::skipped, runFade<exponential, in>},
    {"Fade out e&xponential", Without::skipped, runFade<exponential, out>},
    {"Fade in &sinus", Without::skipped, runFade<sinus, in>},
    {"Fade out s&inus", Without::skipped, runFade<sinus, out>},
    {"Fade in s&quare", Without::skipped, runFade<square, in>},
    {"Fade out sq&uare", Without::skipped, runFade<square, out>},
    {"Fade in &cubic", Without::skipped, runFade<cubic, in>},
    {"Fade out cu&bic", Without::skipped, runFade<cubic, out>},
    {"&Mute", Without::cursor, mute},
    {"&Reverse", Without::all, runRoutine<reverse>},
    {"&Invert", Without::all, runRoutine<invert>},
    {"&DC remover", Without::all, runRoutine<removeDc>},
    {"Normalize &0 dB", Without::all, runNormalize<0>},
    {"Normalize -0.&3 dB", Without::all, runNormalize<-3>},
    {"Normalize -&1 dB", Without::all, runNormalize<-10>},
    {"Normalize -3 d&B", Without::all, runNormalize<-30>},
    {"Normalize -&6 dB", Without::all, runNormalize<-60>},
    {"V&ocal remover", Without::all, runRoutine<removeVocals>},
    {"Volume &-6 dB", Without::cursor, halve},
    {"Volume &+6 dB", Without::cursor, twice},
    {"Truncate -&6 dB", Without::wholeFile, runClip<-6>},
    {"Truncate -1&2 dB", Without::wholeFile, runClip<-12>},
    {"Interpolat&e", Without::nothing, runRoutine<interpolate>},
    {"&Swap channel", Without::cursor, runRoutine<swapStereo>},
    {"&Crossfade loop 100", Without::wholeFile, crossfadeWhole},
    {"Crossfade loop &50", Without::wholeFile, crossfadeHalf},
    {"Set dirac at c&ursor", Without::wholeFile, dirac},
    {"Set step at curs&or", Without::wholeFile, step},
    {"Synthesis: im&pulse train", Without::wholeFile, impulses},
    {"Synthesis: frequency sweep e&xp", Without::wholeFile, sweepExp},
    {"Synthesis: frequency s&weep linear", Without::wholeFile, sweepLinear},
    {"&Apply volume envelope", Without::wholeFile, applyEnvelope},
}};

const QuickEffect& effectOf(const CommandCall& call) {
  return kQuickEffects[static_cast<size_t>(call.command.number)];
}

std::optional<Refusal> checkQuick(CommandCall& call) {
  call.skipped = effectOf(call).without == Without::skipped && !call.doc.view().hasSelection();
  return std::nullopt;
}

std::optional<UndoKind> quickUndo(CommandCall& call) {
  switch (effectOf(call).without) {
    case Without::wholeFile:
      return UndoKind::wholeFile;
    case Without::all:
      return call.doc.view().hasSelection() ? UndoKind::selection : UndoKind::wholeFile;
    case Without::skipped:
    case Without::cursor:
    case Without::nothing:
      break;
  }
  return UndoKind::selection;
}

std::optional<Refusal> runQuick(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const QuickEffect& effect = effectOf(call);
  const bool selected = doc.view().hasSelection() && effect.without != Without::wholeFile;
  if (doc.wave().frames() == 0 || (effect.without == Without::nothing && !selected)) return std::nullopt;
  const int32_t cursor = doc.clampFrame(doc.view().cursor);
  FrameRange range{0, doc.lastFrame()};
  if (selected) {
    const auto [first, last] = doc.selectionOrPoint();
    range = {first, last};
  } else if (effect.without == Without::cursor) {
    range = {cursor, cursor};
  }
  effect.run(doc.wave(), range, cursor);
  return std::nullopt;
}

std::string quickName(CommandCall& call) { return EffectNames[static_cast<size_t>(call.command.number)]; }

Menu menuOf(int number) {
  if (number < 10) return Menu::fade;
  if (number >= 14 && number <= 18) return Menu::normalize;
  if (number == 26 || number == 27) return Menu::loop;
  if (number == 33) return Menu::volume;
  if (number >= 28) return Menu::generate;
  return Menu::process;
}

}  // namespace

std::vector<Command> quickEffectCommands() {
  static const auto ids = [] {
    std::array<std::string, kQuickEffects.size()> all;
    for (size_t i = 0; i < all.size(); ++i) all[i] = "quick-" + std::to_string(i);
    return all;
  }();
  std::vector<Command> commands;
  for (size_t i = 0; i < kQuickEffects.size(); ++i) {
    const auto number = static_cast<int>(i);
    commands.push_back({ids[i].c_str(),
                        kQuickEffects[i].menuText,
                        "",
                        menuOf(number),
                        {},
                        checkQuick,
                        quickUndo,
                        Lock::turns,
                        runQuick,
                        quickName,
                        Command::Changes::samples,
                        number});
  }
  return commands;
}

}  // namespace plumetta
