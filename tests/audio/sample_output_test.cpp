// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/sample_output.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace plumetta {
namespace {

template <typename Stored>
std::vector<Stored> converted(const std::vector<float>& left, const float* right, int bitDepth) {
  const float* channels[] = {left.data(), right};
  std::vector<Stored> out(left.size() * 2, Stored{77});
  convertSamples(channels, 2, static_cast<int>(left.size()), bitDepth, out.data());
  return out;
}

TEST(SampleOutput, StoresTheStatedValueOfEachDepthClampedAndCutTowardsZero) {
  const float nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
  struct Row {
    float in;
    uint8_t eight;
    int16_t sixteen;
    int32_t twentyFour;
  };
  const Row rows[] = {
      {0.0f, 127, 0, 0},      {1.0f, 253, 32766, 1}, {-1.0f, 1, -32766, -1}, {0.5f, 190, 16383, 0},
      {-0.5f, 64, -16383, 0}, {1.5f, 253, 32766, 1}, {-inf, 1, -32766, -1},  {inf, 253, 32766, 1},
      {nan, 127, 0, 0},       {0.25f, 158, 8191, 0}, {-0.25f, 95, -8191, 0}, {-0.999f, 1, -32733, 0},
      {1.0e-5f, 127, 0, 0},   {-1.0e-5f, 126, 0, 0}, {3.1e-5f, 127, 1, 0},
  };
  for (const Row& row : rows) {
    const std::vector<float> left{row.in, 0.0f};
    const float right[] = {0.5f, row.in};
    EXPECT_EQ(converted<uint8_t>(left, right, 8), (std::vector<uint8_t>{row.eight, 190, 127, row.eight}))
        << row.in;
    EXPECT_EQ(converted<int16_t>(left, right, 16), (std::vector<int16_t>{row.sixteen, 16383, 0, row.sixteen}))
        << row.in;
    EXPECT_EQ(converted<int32_t>(left, right, 24),
              (std::vector<int32_t>{row.twentyFour, 0, 0, row.twentyFour}))
        << row.in;
  }
}

TEST(SampleOutput, MissingChannelIsSilenceAndAnotherDepthLeavesTheMemory) {
  EXPECT_EQ(converted<uint8_t>({1.0f}, nullptr, 8), (std::vector<uint8_t>{253, 127}));
  EXPECT_EQ(converted<int16_t>({1.0f}, nullptr, 20), (std::vector<int16_t>{77, 77}));
}

}  // namespace
}  // namespace plumetta
