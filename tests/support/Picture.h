// SPDX-License-Identifier: MIT
// A context that draws into a white picture of its own, by the classic rules.
#pragma once

#include "tests/support/Targets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

struct Picture {
    static constexpr KAVO::Pixel kBlank = 0xFFFFFFFF;
    static constexpr int kGuard = 4; // rows above and below that nobody may touch

    const int size;
    std::vector<KAVO::Pixel> pixels;
    KAVO::Graphics2D::MMContext2D context; // anti-aliased; paints black
    uint32_t wordsKept = 0;                // scratch memory that stays taken

    explicit Picture(int side = 64)
        : size(side), pixels(static_cast<size_t>(side * (side + 2 * kGuard)), kBlank)
    {
        classicTarget(context, pixels.data() + side * kGuard, side, side);
        context.antiAlias = 1;
        context.currentPaint = context.fillPaint;
    }
    ~Picture()
    {
        const auto guard = size * kGuard;
        EXPECT_EQ(std::count(pixels.begin(), pixels.begin() + guard, kBlank), guard);
        EXPECT_EQ(std::count(pixels.end() - guard, pixels.end(), kBlank), guard);
        EXPECT_EQ(context.scratchStack.usedWords, wordsKept);
    }

    size_t indexOf(int x, int y) const { return static_cast<size_t>((y + kGuard) * size + x); }
    KAVO::Pixel at(int x, int y) const { return pixels[indexOf(x, y)]; }
    void fill(KAVO::Pixel colour)
    {
        std::fill_n(pixels.begin() + size * kGuard, size * size, colour);
    }
    int coverage(int x, int y) const { return 255 - static_cast<int>(at(x, y) & 0xFF); }
    bool blank() const
    {
        return std::all_of(pixels.begin(), pixels.end(), [](KAVO::Pixel p) { return p == kBlank; });
    }
    bool emptyBounds() const
    {
        using namespace KAVO::Graphics2D;
        return context.boundsMinX == kEmptyBoundsMin && context.boundsMinY == kEmptyBoundsMin &&
               context.boundsMaxX == kEmptyBoundsMax && context.boundsMaxY == kEmptyBoundsMax;
    }
};
