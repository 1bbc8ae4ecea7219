// SPDX-License-Identifier: GPL-3.0-or-later
#include "doc/surface_painter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace plumetta {
namespace {

constexpr double kDepth = SurfaceProjection::kDepth, kHeight = SurfaceProjection::kHeight;
constexpr Rgb kGround{0, 0, 200};

LevelColours greys() {
  LevelColours colours;
  for (size_t i = 0; i < colours.size(); ++i)
    colours[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(i), 0};
  return colours;
}

TEST(SurfaceProjection, FitsTheBoxFromWhereverItIsSeen) {
  for (const double turn : {0.0, 0.7, 2.0, -3.0}) {
    for (const double tilt : {0.15, 0.6, 1.4}) {
      const SurfaceProjection seen({turn, tilt, 1.0}, 400, 300, 40, 20);
      double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
      for (const double x : {-1.0, 1.0}) {
        for (const double y : {-kDepth, kDepth}) {
          for (const double z : {0.0, kHeight}) {
            const auto at = seen.at(x, y, z);
            left = std::min(left, at.x), right = std::max(right, at.x);
            top = std::min(top, at.y), bottom = std::max(bottom, at.y);
          }
        }
      }
      EXPECT_NEAR(left + right, 400, 1e-6);
      EXPECT_NEAR(top + bottom, 300, 1e-6);
      EXPECT_NEAR(std::max((right - left) / 320, (bottom - top) / 260), 1.0, 1e-6);
      // What is nearer stands lower, what is higher stands higher.
      const double awayX = std::sin(turn) * 0.5, awayY = std::cos(turn) * 0.5;
      EXPECT_LT(seen.at(awayX, awayY, 0).y, seen.at(-awayX, -awayY, 0).y);
      EXPECT_LT(seen.at(0, 0, kHeight).y, seen.at(0, 0, 0).y);
    }
  }
}

// A block in the middle of a plain hides what lies behind it, and only that, from every side.
TEST(SurfacePainter, WhatIsNearerHidesWhatLiesBehind) {
  HeightField field{41, 41, std::vector<float>(41 * 41, 0.0f)};
  for (int s = 15; s <= 25; ++s) {
    for (int p = 15; p <= 25; ++p) field.heights[static_cast<size_t>(s * 41 + p)] = 1.0f;
  }
  for (double degrees = 0; degrees < 360; degrees += 30) {
    const double turn = degrees * std::numbers::pi / 180;
    const SurfaceProjection seen({turn, 0.4, 1.0}, 400, 300, 20, 20);
    const SurfacePainter painter(field, seen);
    Picture picture(400, 300, kGround);
    painter.paintSurface(picture, greys(), 0);
    const auto pixel = [&](double away, double z) {
      const auto at = seen.at(std::sin(turn) * away, std::cos(turn) * away, z);
      return picture.at(static_cast<int>(at.x), static_cast<int>(at.y));
    };
    EXPECT_GT(pixel(0.42, 0).red, 100) << degrees;
    EXPECT_GT(pixel(0.0, kHeight).red, 200) << degrees;
    EXPECT_LT(pixel(-0.6, 0).red, 10) << degrees;
    EXPECT_EQ(picture.at(2, 2), kGround);
    const auto hidden = seen.at(std::sin(turn) * 0.42, std::cos(turn) * 0.42, 0);
    const auto spot = painter.spotAt(hidden.x, hidden.y);
    ASSERT_TRUE(spot);
    EXPECT_GE(spot->spectrum, 14);
    EXPECT_LE(spot->spectrum, 25);
    EXPECT_FALSE(painter.spotAt(2, 2));
  }
}

TEST(SurfacePainter, LeavesNoGapsAndStaysInsideThePicture) {
  HeightField field{12, 20, {}};
  for (int i = 0; i < 240; ++i) field.heights.push_back(static_cast<float>((i * 7919) % 100) / 99.0f);
  for (const double zoom : {1.0, 8.0}) {
    const SurfaceProjection seen({-0.6, 0.9, zoom}, 100, 80, 10, 10);
    const SurfacePainter painter(field, seen);
    Picture picture(100, 80, kGround);
    painter.paintFrame(picture, {1, 2, 3}, 3);
    painter.paintSurface(picture, greys(), 1);
    for (int y = 0; y < 80; ++y) {
      for (int x = 0; x < 100; ++x) {
        if (painter.spotAt(x + 0.5, y + 0.5)) {
          EXPECT_NE(picture.at(x, y), kGround) << zoom << ": " << x << ", " << y;
        }
      }
    }
  }
}

TEST(Picture, HalvedIsTheMeanOfFour) {
  Picture picture(3, 2, {10, 20, 255});
  picture.at(0, 0) = {50, 20, 255};
  const Picture half = halved(picture);
  EXPECT_EQ(half.width, 1);
  EXPECT_EQ(half.height, 1);
  EXPECT_EQ(half.at(0, 0), (Rgb{20, 20, 255}));
}

}  // namespace
}  // namespace plumetta
