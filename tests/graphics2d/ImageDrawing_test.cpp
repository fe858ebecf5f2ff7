// Drawing images through the transform, and parts of images scaled and turned into a pixmap.
#include "graphics2d/MMContext2D.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

using namespace KAVO::Graphics2D;

constexpr Pixel kBackground = 0xFF00AA00;
constexpr int kSize = 32;

// A 4 by 3 image, texel (i, j) of colour 0xFFi0j080, and a canvas.
struct ImageDrawing : testing::Test {
    std::vector<Pixel> texels;
    std::vector<Pixel> pixels = std::vector<Pixel>(kSize * kSize, kBackground);
    MMPixmap image;
    MMPixmap canvas = {kSize, kSize, kSize * 4, 0, pixels.data(), 0};
    MMContext2D context;

    ImageDrawing()
    {
        for (int j = 0; j < 3; ++j)
            for (int i = 0; i < 4; ++i)
                texels.push_back(texel(i, j));
        image = {4, 3, 16, 0, texels.data(), 0};
        context.target = canvas;
        context.clipRight = context.clipBottom = kSize;
        context.patternFilter = kFilterNearest;
    }
    static Pixel texel(int i, int j)
    {
        return 0xFF000080u | static_cast<Pixel>(i) << 20 | static_cast<Pixel>(j) << 12;
    }
    // Compares the canvas with expected(x, y), background where that says 0.
    void expect(const std::function<Pixel(int x, int y)>& expected)
    {
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x) {
                const Pixel p = expected(x, y);
                ASSERT_EQ(pixels[static_cast<size_t>(y * kSize + x)], p != 0 ? p : kBackground)
                    << x << "," << y;
            }
    }
};

TEST_F(ImageDrawing, UnderTheIdentityTheImageIsCopied)
{
    context.currentPaint.paintType = kPaintXOR;
    context.drawImage(&image, 0, 0, 4 << 16, 3 << 16, 0);
    expect([](int x, int y) { return x < 4 && y < 3 ? texel(x, y) : 0; });
    EXPECT_EQ(context.currentPaint.paintType, kPaintXOR) << "restored";
    EXPECT_EQ(context.currentPaint.paintOpacity, 255) << "left behind";
}

TEST_F(ImageDrawing, TheRectangleSelectsOrCarriesTheImage)
{
    // Without the offset the image stays at the origin: the rectangle shows its outermost texels.
    context.drawImage(&image, 2 << 16, 2 << 16, 6 << 16, 4 << 16, 0);
    expect([](int x, int y) {
        return x >= 2 && x < 8 && y >= 2 && y < 6 ? texel(std::min(x, 3), std::min(y, 2)) : 0;
    });
    std::fill(pixels.begin(), pixels.end(), kBackground);
    context.transform.translate(5 << 16, 1 << 16);
    context.drawImage(&image, 2 << 16, 2 << 16, 4 << 16, 3 << 16, 1);
    expect(
        [](int x, int y) { return x >= 7 && x < 11 && y >= 3 && y < 6 ? texel(x - 7, y - 3) : 0; });
}

TEST_F(ImageDrawing, AlphaCountsWhenTheImageSaysSo)
{
    // An opaque paint copies translucent texels; with the flag they are blended over the pixel to
    // the right of each: weight 0 leaves it.
    for (Pixel& t : texels)
        t &= 0x00FFFFFF;
    context.drawImage(&image, 0, 0, 4 << 16, 3 << 16, 0);
    EXPECT_EQ(pixels[0], texels[0]);
    image.pixmapExtra = 0x101;
    context.drawImage(&image, 0, 0, 4 << 16, 3 << 16, 0);
    EXPECT_EQ(pixels[0], texels[1]);
    EXPECT_EQ(pixels[3], kBackground);
}

TEST_F(ImageDrawing, APartIsScaledIntoTheDestination)
{
    const MMFixedRegion source = {1 << 16, 1 << 16, 3 << 16, 3 << 16};
    const MMFixedRegion rect = {10 << 16, 20 << 16, 14 << 16, 24 << 16};
    context.clipLeft = 30;
    context.transform.translate(9 << 16, 0);
    context.target = {};
    context.currentPaint.patternHasAlpha = 0;
    image.pixmapExtra = 1; // does not count here
    context.drawImage(&image, &source, &canvas, &rect, 0);
    expect([](int x, int y) {
        const bool inside = x >= 10 && x < 14 && y >= 20 && y < 24;
        return inside ? texel(1 + (x - 10) / 2, 1 + (y - 20) / 2) : 0;
    });
    EXPECT_EQ(context.target.pixels, pixels.data());
    EXPECT_EQ(context.clipLeft, 0);
    EXPECT_EQ(context.clipRight, kSize);
    EXPECT_EQ(context.transform.a, kFixedOne);
    EXPECT_EQ(context.transform.e, 0);
}

TEST_F(ImageDrawing, AnAngleTurnsAboutTheTopLeftCornerAgainstTheClock)
{
    const MMFixedRegion source = {0, 0, 4 << 16, 3 << 16};
    const MMFixedRegion rect = {10 << 16, 10 << 16, 14 << 16, 13 << 16};
    context.drawImage(&image, &source, &canvas, &rect, kDegrees90);
    // What lay i to the right now lies i above, and what lay j below, j to the right.
    expect([](int x, int y) {
        return x >= 10 && x < 13 && y >= 6 && y < 10 ? texel(9 - y, x - 10) : 0;
    });
}

TEST_F(ImageDrawing, BadInputDrawsNothingOutside)
{
    const Fixed extremes[] = {INT32_MIN, -0x7FFF0000, -1, 0, 1, 0x30000, 0x7FFF0000, INT32_MAX};
    uint32_t state = 7;
    const auto next = [&] {
        state = state * 1664525 + 1013904223;
        return extremes[(state >> 16) % 8];
    };
    for (int round = 0; round < 3000; ++round) {
        MMPixmap odd = image;
        if (round % 5 == 0) odd.width = static_cast<uint16_t>(round / 5 % 2);
        if (round % 7 == 0) odd.pixels = nullptr;
        context.patternFilter = static_cast<uint8_t>(round % 3);
        context.antiAlias = round % 2;
        odd.pixmapExtra = static_cast<uint32_t>(round / 2 % 2);
        if (round % 4 != 0) {
            context.transform = {next(), next(), next(), next(), next(), next()};
            context.drawImage(&odd, next(), next(), next(), next(),
                              static_cast<uint8_t>(round % 2));
        } else {
            const MMFixedRegion source = {next(), next(), next(), next()};
            const MMFixedRegion rect = {next(), next(), next(), next()};
            context.drawImage(&odd, &source, &canvas, &rect, next());
        }
    }
    context.drawImage(nullptr, 0, 0, 0, 0, 0);
    context.drawImage(&image, nullptr, &canvas, nullptr, 0);
}

} // namespace
