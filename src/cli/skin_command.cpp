// SPDX-License-Identifier: GPL-3.0-or-later
// `plumetta-cli skin`: what a skin file holds.
#include "app/skin.h"
#include "cli/call.h"
#include "cli/terminal_prompter.h"

namespace plumetta {
namespace {

std::string linesOf(const Skin& skin) {
  const Palette palette(skin, false);
  std::string text;
  for (size_t i = 0; i < kTints; ++i) {
    const auto tint = static_cast<Tint>(i);
    const TintRow& row = tintRow(tint);
    text += std::string(row.key) + "\t" + colourText(palette[tint]) + "\t" +
            (skin[tint] ? "given" : "default") + "\t" + row.meaning + "\n";
  }
  return text;
}

}  // namespace

int runSkin(const CallOptions& options, WordReader words) {
  if (words.rest() != 1) return wrongCall("skin: one FILE is wanted");
  TerminalPrompter prompter(options.answer, options.quiet);
  const std::string path = words.take();
  const bool there = nativeFileSystem().kind(path) == FileKind::regular;
  SkinReading reading = readSkin(nativeFileSystem(), path);
  for (std::string& problem : unreadableTexts(reading.skin, false)) {
    reading.problems.push_back(std::move(problem));
  }
  if (reading.isSkin && !print(linesOf(reading.skin))) return kFileError;
  for (const std::string& problem : reading.problems) prompter.message(problem);
  if (!there) return kFileError;
  return reading.problems.empty() ? kAllDone : kRefused;
}

}  // namespace plumetta
