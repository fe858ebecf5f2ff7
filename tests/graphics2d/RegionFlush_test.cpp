// SPDX-License-Identifier: MIT
#include "graphics2d/RegionFlush.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace KAVO;

namespace {

constexpr Pixel kBackground = 0xFFBBBBBB;
constexpr Pixel kPadding = 0x50505050;
constexpr uint32_t kWidth = 7, kHeight = 5, kStride = 9;

// A pixmap of numbered pixels whose rows are followed by padding.
struct Numbered {
    std::vector<Pixel> pixels = std::vector<Pixel>(kStride * kHeight, kPadding);
    MMPixmap pixmap = {kWidth, kHeight, kStride * 4, kBackground, pixels.data(), 0};

    static Pixel numberOf(uint32_t x, uint32_t y) { return y << 16 | x; }
    Numbered()
    {
        for (uint32_t y = 0; y < kHeight; ++y)
            for (uint32_t x = 0; x < kWidth; ++x)
                pixels[y * kStride + x] = numberOf(x, y);
    }
    template <class Expected>
    void expect(const std::string& what, Expected expected) const
    {
        for (uint32_t y = 0; y < kHeight; ++y)
            for (uint32_t x = 0; x < kStride; ++x)
                ASSERT_EQ(pixels[y * kStride + x], x < kWidth ? expected(x, y) : kPadding)
                    << what << ": pixel " << x << ", " << y;
    }
};

TEST(RegionFlush, FillsTheRectangleCutToThePixmap)
{
    const struct {
        uint32_t x, y, w;
        uint16_t h;
    } cases[] = {
        {2, 1, 3, 2}, {4, 2, 100, 100}, {5, 3, 0xFFFFFFFF, 0xFFFF},     {7, 0, 3, 3},
        {0, 5, 3, 3}, {8, 0, 3, 3},     {0xFFFFFFFF, 0, 0xFFFFFFFF, 9}, {3, 0xFFFFFFFF, 3, 9},
        {0, 0, 0, 5}, {0, 0, 5, 0}};
    for (const auto& c : cases) {
        Numbered picture;
        MMG_flushRegion(&picture.pixmap, c.x, c.y, c.w, c.h, 0xFF123456);
        picture.expect(
            "at " + std::to_string(c.x) + ", " + std::to_string(c.y), [&](uint32_t x, uint32_t y) {
                const bool inside = x >= c.x && x - c.x < c.w && y >= c.y && y - c.y < c.h;
                return inside ? 0xFF123456 : Numbered::numberOf(x, y);
            });
    }
}

TEST(RegionFlush, PansByEveryDistance)
{
    std::vector<std::pair<int, int>> motions = {{-32768, 0}, {0, -32768}, {32767, 32767}};
    for (int dx = -8; dx <= 8; ++dx)
        for (int dy = -6; dy <= 6; ++dy)
            motions.emplace_back(dx, dy);
    for (const auto& motion : motions) {
        const int dx = motion.first, dy = motion.second;
        Numbered picture;
        panPixmap(&picture.pixmap, static_cast<int16_t>(dx), static_cast<int16_t>(dy));
        picture.expect("by " + std::to_string(dx) + ", " + std::to_string(dy),
                       [&](uint32_t x, uint32_t y) {
                           const uint32_t fromX = x - uint32_t(dx), fromY = y - uint32_t(dy);
                           const bool covered = fromX < kWidth && fromY < kHeight;
                           return covered ? Numbered::numberOf(fromX, fromY) : kBackground;
                       });
    }
}

} // namespace
