// SPDX-License-Identifier: GPL-3.0-or-later
// Clipboard, trim, delete, insert silence, undo and redo.
#include <algorithm>

#include "doc/command_groups.h"

namespace plumetta {
namespace {

using Changes = Command::Changes;
using Lock = Command::Lock;

constexpr const char* kUndoLost = "This step can't be undone: its samples could not be kept.";
constexpr const char* kRedoLost = "This step can't be redone: its samples could not be kept.";

// Every channel of the range, whereas the clipboard buffer takes the active ones alone.
std::shared_ptr<const CWave> copyAllChannels(const CWave& wave, int32_t first, int32_t last) {
  auto copy = std::make_shared<CWave>();
  if (!copy->create(wave.sampleRate(), wave.channels(), wave.bitsPerSample(), int64_t{last} - first + 1,
                    kFormatPcm)) {
    return nullptr;
  }
  copy->setFormatTag(wave.formatTag());
  const float* from = wave.samples() + static_cast<size_t>(first) * static_cast<size_t>(wave.channels());
  std::copy_n(from, copy->sampleCount(), copy->samples());
  return copy;
}

// The system clipboard gets every channel, and all frames but the one at the upper bound.
void offerToSystem(CPlumettaDoc& doc, int32_t first, int32_t last) {
  const DocumentServices& services = doc.services();
  if (services.systemClipboard == nullptr) return;
  const auto audio = doc.wave().allActive() ? services.clipboard : copyAllChannels(doc.wave(), first, last);
  if (audio == nullptr) return;
  const int64_t frames = int64_t{doc.view().upperBound()} - doc.view().lowerBound();
  services.systemClipboard->offer(audio,
                                  static_cast<int32_t>(std::clamp<int64_t>(frames, 0, audio->frames())));
}

std::optional<Refusal> copyToClipboard(CommandCall& call) {
  const CWave& wave = call.doc.wave();
  const auto [first, last] = call.doc.selectionOrPoint();
  auto copy = std::make_shared<CWave>();
  if (!wave.copyRangeTo(*copy, first, last)) return Refusal{};
  call.doc.services().clipboard = std::move(copy);
  offerToSystem(call.doc, first, last);
  return std::nullopt;
}

std::optional<Refusal> deleteSelection(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const auto [first, last] = doc.selectionOrPoint();
  if (!doc.wave().deleteRange(first, last)) return Refusal{};
  const int32_t before = std::max(first - 1, 0);
  doc.select(before, before);
  doc.setCursor(before);
  return std::nullopt;
}

// ---- Delete ---------------------------------------------------------------------------------------------

bool markerChosen(const CPlumettaDoc& doc) {
  return doc.selectedMarker && *doc.selectedMarker < doc.wave().markers.count();
}

std::optional<Refusal> checkDelete(CommandCall& call) {
  return markerChosen(call.doc) ? std::nullopt : needAudio(call);
}

std::optional<UndoKind> deleteUndo(CommandCall& call) {
  if (markerChosen(call.doc)) return std::nullopt;
  return UndoKind::erase;
}

std::optional<Refusal> runDelete(CommandCall& call) {
  if (!markerChosen(call.doc)) return deleteSelection(call);
  call.doc.wave().markers.remove(*call.doc.selectedMarker);
  call.doc.selectedMarker.reset();
  call.named = false;
  return std::nullopt;
}

// ---- Paste ----------------------------------------------------------------------------------------------

bool replaces(const CPlumettaDoc& doc) {
  return doc.services().settings.pasteReplace && doc.view().hasSelection();
}

std::optional<Refusal> checkPaste(CommandCall& call) {
  const CWave* clipboard = call.doc.services().clipboard.get();
  if (clipboard == nullptr) return Refusal{};
  const CWave& wave = call.doc.wave();
  if (wave.frames() == 0) return std::nullopt;
  if (clipboard->channels() != 1 && clipboard->channels() != wave.channels()) {
    return clipboardMismatch(*clipboard);
  }
  if (clipboard->frames() > kMaxFrames - wave.frames()) return Refusal{kNoMemory};
  return std::nullopt;
}

std::optional<UndoKind> pasteUndo(CommandCall& call) {
  return replaces(call.doc) ? UndoKind::layout : UndoKind::paste;
}

std::optional<Refusal> pasteReplacing(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const CWave& clipboard = *doc.services().clipboard;
  const auto [first, last] = doc.selectionOrPoint();
  if (!doc.wave().deleteRange(first, last)) doc.prompter().message("Paste replace : suppr error");
  const int32_t start = doc.clampFrame(first);
  if (!doc.wave().insertBuffer(clipboard, start)) doc.prompter().message("Paste replace : paste error");
  doc.select(start, static_cast<int64_t>(start) + clipboard.frames());
  doc.setCursor(start);
  return std::nullopt;
}

std::optional<Refusal> pasteInserting(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const CWave& clipboard = *doc.services().clipboard;
  const int32_t start = doc.clampFrame(doc.view().cursor);
  if (!doc.wave().insertBuffer(clipboard, start)) return Refusal{kNoMemory};
  doc.setSelectionExactly(start, start + clipboard.frames());
  doc.setCursor(static_cast<int64_t>(start) + clipboard.frames());
  return std::nullopt;
}

std::optional<Refusal> runPaste(CommandCall& call) {
  return replaces(call.doc) ? pasteReplacing(call) : pasteInserting(call);
}

// ---- Trim and silence -----------------------------------------------------------------------------------

std::optional<Refusal> checkTrim(CommandCall& call) {
  if (!call.doc.view().hasSelection()) return Refusal{"Create selection first"};
  return needAudio(call);
}

std::optional<Refusal> runTrim(CommandCall& call) {
  const auto [first, last] = call.doc.selectionOrPoint();
  if (!call.doc.wave().trim(first, last)) return Refusal{};
  call.doc.setViewState(ViewState{});
  return std::nullopt;
}

std::optional<Refusal> checkInsertSilence(CommandCall& call) {
  const int64_t position = call.frames(0);
  const int64_t length = call.frames(1);
  const int64_t frames = call.doc.wave().frames();
  if (position < 0 || position > frames || length < 1) return Refusal{};
  if (length > kMaxFrames - frames) return Refusal{kNoMemory};
  return std::nullopt;
}

std::optional<Refusal> runInsertSilence(CommandCall& call) {
  CPlumettaDoc& doc = call.doc;
  const auto position = static_cast<int32_t>(call.frames(0));
  const auto length = static_cast<int32_t>(call.frames(1));
  if (!doc.wave().insertSilence(position, length)) return Refusal{kNoMemory};
  ViewState view = doc.view();
  view.selectionStart = position;
  view.selectionEnd = position + length - 1;
  view.cursor = position;
  view.firstVisibleFrame = 0;
  doc.setViewState(view);
  return std::nullopt;
}

// ---- Undo and redo --------------------------------------------------------------------------------------

std::optional<Refusal> conclude(CommandCall& call, UndoResult result, const char* lost) {
  if (result == UndoResult::done) {
    call.doc.selectedMarker.reset();  // its number may mean another marker now
    return std::nullopt;
  }
  return Refusal{result == UndoResult::samplesMissing ? lost : ""};
}

void beforeStep(CommandCall& call) {
  call.doc.journal().setInRam(call.doc.services().settings.undoInRam ? 1 : 0);
}

std::optional<Refusal> runUndo(CommandCall& call) {
  beforeStep(call);
  return conclude(call, call.doc.journal().undo(), kUndoLost);
}

std::optional<Refusal> runRedo(CommandCall& call) {
  beforeStep(call);
  return conclude(call, call.doc.journal().redo(), kRedoLost);
}

std::optional<Refusal> doNothing(CommandCall&) { return std::nullopt; }

}  // namespace

std::vector<Command> editCommands() {
  const std::vector<Parameter> silence{positionalFrame("at", "Position"),
                                       positionalFrame("length", "Length")};
  // clang-format off
  return {
      {"undo", "&Undo", "Ctrl+Z", Menu::edit, {}, nullptr, nullptr, Lock::byItself, runUndo,
       [](CommandCall&) -> std::string { return "Undo"; }, Changes::samples},
      {"redo", "&Redo", "Ctrl+Y", Menu::edit, {}, nullptr, nullptr, Lock::byItself, runRedo,
       [](CommandCall&) -> std::string { return "Redo"; }, Changes::samples},
      {"cut", "Cu&t", "Ctrl+X", Menu::edit, {}, copyToClipboard, undoAs<UndoKind::cut>, Lock::throughout, deleteSelection,
       [](CommandCall&) -> std::string { return "Cut"; }, Changes::samples},
      {"copy", "&Copy", "Ctrl+C", Menu::edit, {}, copyToClipboard, nullptr, Lock::none, doNothing,
       [](CommandCall&) -> std::string { return "Copy"; }, Changes::nothing},
      {"paste", "&Paste", "Ctrl+V", Menu::edit, {}, checkPaste, pasteUndo, Lock::throughout, runPaste,
       [](CommandCall&) -> std::string { return "Paste"; }, Changes::samples},
      {"delete", "&Delete", "Delete", Menu::edit, {}, checkDelete, deleteUndo, Lock::throughout, runDelete,
       [](CommandCall&) -> std::string { return "Suppr"; }, Changes::samples},
      {"trim", "Trim cr&op", "Ctrl+T", Menu::edit, {}, checkTrim, undoAs<UndoKind::layout>, Lock::throughout, runTrim,
       [](CommandCall&) -> std::string { return "Trim crop"; }, Changes::samples},
      {"insert-silence", "", "", Menu::edit, silence, checkInsertSilence, undoAs<UndoKind::insertSilence>, Lock::throughout,
       runInsertSilence, [](CommandCall&) -> std::string { return "Insert silence"; }, Changes::samples},
  };
  // clang-format on
}

}  // namespace plumetta
