// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "support/loose_document.h"

namespace plumetta {
namespace {

TEST(Losses, ASaveThatLosesSomethingCanBeDeclinedAndIsAskedAboutOnceAFormat) {
  LooseDocument loose(1, 100);
  CPlumettaDoc& doc = loose.doc;
  doc.wave().markers.add(5, std::nullopt);
  loose.prompter.answer = false;
  EXPECT_EQ(doc.save("a.w64"), FileOutcome::cancelled);
  EXPECT_FALSE(loose.files.contents.contains("a.w64"));
  EXPECT_EQ(loose.prompter.losses.size(), 1u);
  loose.prompter.answer = true;
  EXPECT_EQ(doc.save("a.w64"), FileOutcome::done);
  EXPECT_EQ(doc.save("b.w64"), FileOutcome::done);
  EXPECT_EQ(loose.prompter.losses.size(), 2u);
  EXPECT_EQ(doc.save("a.au"), FileOutcome::done);
  EXPECT_EQ(loose.prompter.losses.back(), "Saving a.au as Sun/NeXT audio does not keep: markers");
  EXPECT_EQ(doc.save("a.wav"), FileOutcome::done);
  EXPECT_EQ(loose.prompter.losses.size(), 3u);
}

}  // namespace
}  // namespace plumetta
