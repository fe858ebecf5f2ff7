// SPDX-License-Identifier: MIT
#include "svgview/View.h"

#include <gtest/gtest.h>
#include <random>

using KAVO::Svg::Placement;

namespace {

bool isPlacedAt(const View& view, double x, double y, double width, double height)
{
    const Placement p = view.placement();
    return p.x == x && p.y == y && p.width == width && p.height == height;
}

} // namespace

TEST(View, FitsWideAndHighDrawingsOnWholePixels)
{
    EXPECT_TRUE(isPlacedAt(View({200, 100}, 400, 300), 0, 50, 400, 200));
    EXPECT_TRUE(isPlacedAt(View({100, 200}, 300, 400), 50, 0, 200, 400));
    // 101 pixels to spare: half of them, away from zero.
    EXPECT_TRUE(isPlacedAt(View({100, 100}, 201, 100), 51, 0, 100, 100));
}

TEST(View, RefitsOnlyForAnotherSize)
{
    View view({200, 100}, 400, 200);
    view.zoom(2, 10, 10);
    view.takeChange();
    view.resize(400, 200);
    EXPECT_FALSE(view.takeChange().any());
    EXPECT_DOUBLE_EQ(view.scale(), 2 * 1.25 * 1.25);
    view.resize(100, 200);
    EXPECT_TRUE(view.takeChange().whole);
    EXPECT_TRUE(isPlacedAt(view, 0, 75, 100, 50));

    view.pan(7, 0);
    view.setDrawing({200, 100}); // the same drawing, changed
    EXPECT_TRUE(isPlacedAt(view, 7, 75, 100, 50));
    EXPECT_TRUE(view.takeChange().whole);
    view.setDrawing({50, 100});
    EXPECT_TRUE(isPlacedAt(view, 0, 0, 100, 200));
}

TEST(View, ZoomingKeepsThePointBelowThePointer)
{
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        View view({640, 480}, 800, 600);
        view.pan(static_cast<int>(random() % 400) - 200, static_cast<int>(random() % 400) - 200);
        const int x = static_cast<int>(random() % 800);
        const int y = static_cast<int>(random() % 600);
        const double steps = static_cast<int>(random() % 24) - 8;
        const Placement before = view.placement();
        const double scale = view.scale();
        view.zoom(steps, x, y);
        const Placement after = view.placement();
        // In user units, to within the 1/131072 of a pixel that placing rounds by.
        const double bound = 1.0 / 131072 / view.scale() + 1e-9;
        EXPECT_NEAR((x + 0.5 - before.x) / scale, (x + 0.5 - after.x) / view.scale(), bound)
            << x << " " << steps;
        EXPECT_NEAR((y + 0.5 - before.y) / scale, (y + 0.5 - after.y) / view.scale(), bound)
            << y << " " << steps;
        EXPECT_NEAR(view.scale() / scale, std::pow(1.25, steps), 1e-9);
    }
}

TEST(View, ZoomEndsAtItsLimitsAndThenChangesNothing)
{
    View view({100, 50}, 200, 100);
    view.takeChange();
    view.zoom(-1000, 0, 0);
    EXPECT_DOUBLE_EQ(view.placement().width, 16);
    EXPECT_TRUE(view.takeChange().whole);
    view.zoom(-1, 50, 50);
    EXPECT_FALSE(view.takeChange().any());
    view.zoom(1000, 0, 0);
    EXPECT_DOUBLE_EQ(view.placement().width, 1 << 20);

    // A window too small for 16 pixels stays as it is until one zooms in.
    View tiny({100, 50}, 10, 10);
    tiny.zoom(-1, 5, 5);
    EXPECT_DOUBLE_EQ(tiny.placement().width, 10);
    tiny.zoom(1, 5, 5);
    EXPECT_DOUBLE_EQ(tiny.placement().width, 12.5);
}

TEST(View, PanningMovesByWholePixelsAndKeepsTheDrawingInSight)
{
    View view({100, 100}, 300, 200);
    view.takeChange();
    view.pan(30, -20);
    view.pan(7, 0);
    const Change change = view.takeChange();
    EXPECT_TRUE(!change.whole && change.dx == 37 && change.dy == -20);
    EXPECT_TRUE(isPlacedAt(view, 87, -20, 200, 200));

    view.pan(10000, -10000); // 32 pixels stay at the right and at the top
    EXPECT_TRUE(isPlacedAt(view, 300 - 32, 32 - 200, 200, 200));
    view.takeChange();
    view.pan(1, -1);
    EXPECT_FALSE(view.takeChange().any());
    view.pan(-10000, 10000);
    EXPECT_TRUE(isPlacedAt(view, 32 - 200, 200 - 32, 200, 200));
}

TEST(View, WhatZoomingHasPushedOutOfSightCanComeBack)
{
    View view({100, 100}, 300, 100); // the drawing is from x = 100 to 200
    view.zoom(10, 0, 50);
    const double left = view.placement().x;
    ASSERT_GT(left, 900);
    view.pan(5, 0);
    EXPECT_EQ(view.placement().x, left);
    view.pan(-600, 0);
    EXPECT_EQ(view.placement().x, left - 600);
}

// The strips cover exactly what the moved pixels do not.
TEST(View, StripsAreWhatComesIntoSight)
{
    constexpr int kWidth = 7;
    constexpr int kHeight = 5;
    for (int dx = -8; dx <= 8; ++dx) {
        for (int dy = -6; dy <= 6; ++dy) {
            int drawn[kHeight][kWidth] = {};
            for (const PixelRect& r : uncovered({false, dx, dy}, kWidth, kHeight))
                for (int y = r.top; y < r.bottom; ++y)
                    for (int x = r.left; x < r.right; ++x)
                        ++drawn[y][x];
            for (int y = 0; y < kHeight; ++y) {
                for (int x = 0; x < kWidth; ++x) {
                    const bool kept =
                        x - dx >= 0 && x - dx < kWidth && y - dy >= 0 && y - dy < kHeight;
                    EXPECT_EQ(drawn[y][x], kept ? 0 : 1)
                        << "at " << x << " " << y << " after " << dx << " " << dy;
                }
            }
        }
    }
    const std::vector<PixelRect> all = uncovered({true, 1, 1}, kWidth, kHeight);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_TRUE(all[0].right == kWidth && all[0].bottom == kHeight);
}
