#include "graphics2d/RegionFlush.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr Pixel kBackground = 0xFFBBBBBB;
constexpr Pixel kPadding = 0x50505050;

// A picture of numbered pixels whose rows are followed by padding.
struct Picture {
    Picture(uint16_t width, uint16_t height, uint32_t padding)
        : stride(width + padding),
          pixels(size_t{stride} * height, kPadding), pixmap{width,       height,        stride * 4,
                                                            kBackground, pixels.data(), 0}
    {
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                pixels[y * stride + x] = numberOf(x, y);
    }
    static Pixel numberOf(uint32_t x, uint32_t y) { return y << 16 | x; }

    uint32_t stride;
    std::vector<Pixel> pixels;
    MMPixmap pixmap;
};

TEST(RegionFlush, FillsTheRectangleCutToThePixmap)
{
    const struct {
        uint32_t x, y, w;
        uint16_t h;
    } cases[] = {{2, 1, 3, 2},
                 {4, 2, 100, 100},
                 {5, 3, 0xFFFFFFFF, 0xFFFF},
                 {7, 0, 3, 3},
                 {0, 5, 3, 3},
                 {8, 0, 3, 3},
                 {0, 6, 3, 3},
                 {0xFFFFFFFF, 0, 0xFFFFFFFF, 9},
                 {3, 0xFFFFFFFF, 3, 9},
                 {0, 0, 0, 5},
                 {0, 0, 5, 0}};
    for (const auto& c : cases) {
        Picture picture(7, 5, 2);
        MMG_flushRegion(&picture.pixmap, c.x, c.y, c.w, c.h, 0xFF123456);
        for (uint32_t y = 0; y < 5; ++y) {
            for (uint32_t x = 0; x < 9; ++x) {
                const bool inside = x < 7 && x >= c.x && x - c.x < c.w && y >= c.y && y - c.y < c.h;
                const Pixel before = x < 7 ? Picture::numberOf(x, y) : kPadding;
                ASSERT_EQ(picture.pixels[y * 9 + x], inside ? 0xFF123456 : before)
                    << "fill at " << c.x << ", " << c.y << ": pixel " << x << ", " << y;
            }
        }
    }
}

TEST(RegionFlush, PansByEveryDistance)
{
    constexpr int32_t kWidth = 6;
    constexpr int32_t kHeight = 4;
    std::vector<std::pair<int32_t, int32_t>> motions = {{-32768, 0}, {0, -32768}, {32767, 32767}};
    for (int32_t dx = -kWidth - 1; dx <= kWidth + 1; ++dx)
        for (int32_t dy = -kHeight - 1; dy <= kHeight + 1; ++dy)
            motions.push_back({dx, dy});
    for (const auto& [dx, dy] : motions) {
        Picture picture(kWidth, kHeight, 3);
        panPixmap(&picture.pixmap, static_cast<int16_t>(dx), static_cast<int16_t>(dy));
        for (int32_t y = 0; y < kHeight; ++y) {
            for (int32_t x = 0; x < kWidth + 3; ++x) {
                const int32_t fromX = x - dx;
                const int32_t fromY = y - dy;
                const bool covered = fromX >= 0 && fromX < kWidth && fromY >= 0 && fromY < kHeight;
                Pixel expected = kBackground;
                if (covered) {
                    expected = Picture::numberOf(static_cast<uint32_t>(fromX),
                                                 static_cast<uint32_t>(fromY));
                }
                if (x >= kWidth) expected = kPadding;
                ASSERT_EQ(picture.pixels[static_cast<size_t>(y * (kWidth + 3) + x)], expected)
                    << "pan by " << dx << ", " << dy << ": pixel " << x << ", " << y;
            }
        }
    }
}

TEST(RegionFlush, EmptyPixmapsAreLeftAlone)
{
    MMPixmap empty = {0, 0, 0, kBackground, nullptr, 0};
    MMG_flushRegion(&empty, 0, 0, 5, 5, 1);
    panPixmap(&empty, 1, 1);
    MMPixmap unset = {3, 3, 12, kBackground, nullptr, 0};
    MMG_flushRegion(&unset, 0, 0, 3, 3, 1);
    panPixmap(&unset, 1, 1);
}

} // namespace
