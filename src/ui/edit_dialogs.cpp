// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/edit_dialogs.h"

#include <algorithm>
#include <cmath>

#include "ui/form_dialog.h"
#include "ui/format_choices.h"
#include "ui/number_text.h"
#include "ui/text.h"

namespace plumetta {
namespace {

// ---- New file -------------------------------------------------------------------------------------------

constexpr const char* kNewFile = "New file";

struct DepthChoice {
  const char* name;
  int bits;
  uint16_t formatTag;
};
constexpr DepthChoice kEncodings[] = {{"8-bit PCM", 8, kFormatPcm},
                                      {"16-bit PCM", 16, kFormatPcm},
                                      {"24-bit PCM", 24, kFormatPcm},
                                      {"32-bit PCM", 32, kFormatPcm},
                                      {"32-bit float", 32, kFormatFloat}};
constexpr int kEncodingCount = static_cast<int>(std::size(kEncodings));

// ---- Insert silence -------------------------------------------------------------------------------------

constexpr const char* kSilence = "Insert Silence";
enum PositionType { kAtStart = 0, kAtEnd = 1, kAtCursor = 2, kPositionTypes = 3 };

int64_t positionOf(int type, const CPlumettaDoc& doc) {
  if (type == kAtStart) return 0;
  return type == kAtEnd ? doc.wave().frames() : doc.view().cursor;
}

int64_t framesOf(double seconds, uint32_t sampleRate) {
  return FrameOrTime{seconds, true}.frames(sampleRate);
}

// A length that adds at least one frame and no more than there is room for.
FormDialog::Check silenceLength(const CPlumettaDoc& doc) {
  const uint32_t rate = doc.wave().sampleRate();
  const int64_t room = kMaxFrames - doc.wave().frames();
  return [=](const std::string& text) -> std::string {
    const auto seconds = parseNumber(text);
    if (!seconds) return "This is not a number.";
    const int64_t frames = framesOf(*seconds, rate);
    if (frames < 1) return "At least one frame is needed.";
    return frames > room ? "No file can become that long." : "";
  };
}

// ---- Go to ----------------------------------------------------------------------------------------------

constexpr const char* kGoTo = "Go to";

wxArrayString positionUnits() {
  wxArrayString units;
  units.Add("seconds");
  units.Add("frames");
  return units;
}

}  // namespace

std::optional<NewFileChoice> askNewFile(wxWindow* parent, WindowProfile& profile) {
  FormDialog form(parent, "New file");
  wxComboBox* rate = form.addCombo("Sample rate", "Hz", toWx(profile.text(kNewFile, "Rate", "44100")),
                                   commonRates(), wholeNumberBetween(1, kMaxRate));
  wxChoice* channels = form.addChoice(
      "Channels", channelCounts(), std::clamp(profile.integer(kNewFile, "Channels", 2), 1, kMaxChannels) - 1);
  wxArrayString encodings;
  for (const DepthChoice& encoding : kEncodings) encodings.Add(encoding.name);
  wxChoice* encoding = form.addChoice(
      "Samples", encodings, std::clamp(profile.integer(kNewFile, "Encoding", 1), 0, kEncodingCount - 1));
  const auto checkLength = [rate](const std::string& text) -> std::string {
    const auto seconds = parseNumber(text);
    if (!seconds || *seconds < 0) return seconds ? "A length is never negative." : "This is not a number.";
    return std::round(*seconds * checkedNumber(*rate)) > kMaxFrames ? "No file can be that long." : "";
  };
  wxTextCtrl* length =
      form.addText("Length", "seconds", toWx(numberText(profile.real(kNewFile, "Length", 10))), checkLength);
  if (!form.ask("Create")) return std::nullopt;

  NewFileChoice choice{};
  choice.sampleRate = static_cast<uint32_t>(checkedNumber(*rate));
  choice.channels = channels->GetSelection() + 1;
  choice.bits = kEncodings[encoding->GetSelection()].bits;
  choice.formatTag = kEncodings[encoding->GetSelection()].formatTag;
  choice.frames = framesOf(checkedNumber(*length), choice.sampleRate);
  profile.setText(kNewFile, "Rate", numberText(choice.sampleRate));
  profile.setInteger(kNewFile, "Channels", choice.channels);
  profile.setInteger(kNewFile, "Encoding", encoding->GetSelection());
  profile.setReal(kNewFile, "Length", checkedNumber(*length));
  return choice;
}

std::optional<SilenceChoice> askSilence(wxWindow* parent, const CPlumettaDoc& doc, WindowProfile& profile) {
  FormDialog form(parent, "Insert silence");
  wxTextCtrl* length = form.addText(
      "Length", "seconds", toWx(numberText(profile.real(kSilence, "Length", 1.0))), silenceLength(doc));
  wxArrayString positions;
  positions.Add("At the start");
  positions.Add("At the end");
  positions.Add("At the cursor");
  const int stored = profile.integer(kSilence, "Position Type", kAtStart);
  // Any other stored number means no place at all; the person has to choose one then.
  wxChoice* place =
      form.addChoice("Position", positions, stored >= 0 && stored < kPositionTypes ? stored : -1);
  if (!form.ask("Insert")) return std::nullopt;

  const int type = place->GetSelection();
  profile.setReal(kSilence, "Length", checkedNumber(*length));
  if (type == wxNOT_FOUND) return std::nullopt;
  profile.setInteger(kSilence, "Position Type", type);
  return SilenceChoice{positionOf(type, doc), framesOf(checkedNumber(*length), doc.wave().sampleRate())};
}

std::optional<int64_t> askPosition(wxWindow* parent, const CPlumettaDoc& doc, WindowProfile& profile) {
  FormDialog form(parent, "Go to");
  const int unit = std::clamp(profile.integer(kGoTo, "Unit", 0), 0, 1);
  const double now = unit == 1 ? doc.view().cursor : doc.view().cursor / double(doc.wave().sampleRate());
  const auto field = form.addNumberWithUnits("Position", toWx(numberText(std::round(now * 1e6) / 1e6)),
                                             positionUnits(), unit, numberBetween(0, kMaxFrames));
  if (!form.ask("Go")) return std::nullopt;
  profile.setInteger(kGoTo, "Unit", field.unit->GetSelection());
  return FrameOrTime{checkedNumber(*field.number), field.unit->GetSelection() == 0}.frames(
      doc.wave().sampleRate());
}

}  // namespace plumetta
