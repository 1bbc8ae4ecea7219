// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/frequency_rows.h"

#include <gtest/gtest.h>

namespace plumetta {
namespace {

TEST(FrequencyRows, KeepTheLoudestLineAndInterpolateBetweenLines) {
  // Lines at 0, 100 ... 800 Hz: 0 dB at 500, -40 dB elsewhere, nothing at 800. Powers count twice.
  std::vector<float> powers(9, 0.5e-4f);
  powers[5] = 0.5f;
  powers[8] = 0.0f;
  const auto rowsOf = [&](const FrequencyAxis& axis, int count) {
    const FrequencyRows rows(axis, 100.0, powers.size(), count);
    std::vector<float> db(rows.size());
    rows.decibels(powers, 2.0, db);
    return db;
  };
  const struct {
    FrequencyAxis axis;
    std::vector<float> db;
  } cases[] = {
      {{0, 800, false}, {-40, 0}},
      {{100, 800, true}, {-40, -40, 0}},
      {{400, 500, false}, {-40, -25, -15, -5}},  // lines at the low ends of rows 0 and, beyond, 4
      {{740, 760, false}, {0.5f * -40 + 0.5f * FrequencyRows::kSilenceDb}},
      {{2000, 3000, false}, {FrequencyRows::kSilenceDb, FrequencyRows::kSilenceDb}},
  };
  for (const auto& [axis, expected] : cases) {
    const auto db = rowsOf(axis, static_cast<int>(expected.size()));
    for (size_t i = 0; i < expected.size(); ++i)
      EXPECT_NEAR(db[i], expected[i], 1e-3) << axis.lowHz << " " << i;
  }
}

}  // namespace
}  // namespace plumetta
