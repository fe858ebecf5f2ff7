// SPDX-License-Identifier: MIT
// Drawing images through the transform, and parts of images scaled and turned into a pixmap.
#include "tests/support/Picture.h"
#include "tests/support/UserUnits.h"

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

Pixel texel(int i, int j)
{
    return 0xFF000080u | static_cast<Pixel>(i) << 20 | static_cast<Pixel>(j) << 12;
}

// A 4 by 3 image, and a picture to draw it in.
struct ImageDrawing : testing::Test, Picture {
    std::vector<Pixel> texels;
    MMPixmap image;

    ImageDrawing() : Picture(32)
    {
        for (int j = 0; j < 3; ++j)
            for (int i = 0; i < 4; ++i)
                texels.push_back(texel(i, j));
        image = {4, 3, 16, 0, texels.data(), 0};
        context.antiAlias = 0;
        context.patternFilter = kFilterNearest;
    }
    // Compares the picture with the texel that expected gives for x and y, blank where that is 0.
    void expect(Pixel (*expected)(int x, int y))
    {
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                const Pixel p = expected(x, y);
                ASSERT_EQ(at(x, y), p != 0 ? p : kBlank) << x << "," << y;
            }
    }
};

TEST_F(ImageDrawing, UnderTheIdentityTheImageIsCopied)
{
    context.currentPaint.paintType = kPaintXOR;
    context.drawImage(&image, 0, 0, fx(4), fx(3), 0);
    expect([](int x, int y) { return x < 4 && y < 3 ? texel(x, y) : 0; });
    EXPECT_EQ(context.currentPaint.paintType, kPaintXOR) << "restored";
    EXPECT_EQ(context.currentPaint.paintOpacity, 255) << "left behind";
}

TEST_F(ImageDrawing, TheRectangleSelectsOrCarriesTheImage)
{
    // Without the offset the image stays at the origin: the rectangle shows its outermost texels.
    context.drawImage(&image, fx(2), fx(2), fx(6), fx(4), 0);
    expect([](int x, int y) {
        return x >= 2 && x < 8 && y >= 2 && y < 6 ? texel(std::min(x, 3), std::min(y, 2)) : 0;
    });
    std::fill(pixels.begin(), pixels.end(), kBlank);
    context.transform.translate(fx(5), fx(1));
    context.drawImage(&image, fx(2), fx(2), fx(4), fx(3), 1);
    expect(
        [](int x, int y) { return x >= 7 && x < 11 && y >= 3 && y < 6 ? texel(x - 7, y - 3) : 0; });
}

TEST_F(ImageDrawing, AlphaCountsWhenTheImageSaysSo)
{
    // An opaque paint copies translucent texels; with the flag they are blended over the pixel to
    // the right of each: weight 0 leaves it.
    for (Pixel& t : texels)
        t &= 0x00FFFFFF;
    context.drawImage(&image, 0, 0, fx(4), fx(3), 0);
    EXPECT_EQ(at(0, 0), texels[0]);
    image.pixmapExtra = 0x101;
    context.drawImage(&image, 0, 0, fx(4), fx(3), 0);
    EXPECT_EQ(at(0, 0), texels[1]);
    EXPECT_EQ(at(3, 0), kBlank);
}

TEST_F(ImageDrawing, APartIsScaledIntoTheDestination)
{
    const MMFixedRegion source = {fx(1), fx(1), fx(3), fx(3)};
    const MMFixedRegion rect = {fx(10), fx(20), fx(14), fx(24)};
    const MMPixmap canvas = context.target;
    context.clipLeft = 30;
    context.transform.translate(fx(9), 0);
    context.target = {};
    context.currentPaint.patternHasAlpha = 0;
    image.pixmapExtra = 1; // does not count here
    context.drawImage(&image, &source, &canvas, &rect, 0);
    expect([](int x, int y) {
        const bool inside = x >= 10 && x < 14 && y >= 20 && y < 24;
        return inside ? texel(1 + (x - 10) / 2, 1 + (y - 20) / 2) : 0;
    });
    EXPECT_EQ(context.target.pixels, canvas.pixels);
    EXPECT_EQ(context.clipLeft, 0);
    EXPECT_EQ(context.clipRight, size);
    EXPECT_EQ(context.transform.a, kFixedOne);
    EXPECT_EQ(context.transform.e, 0);
}

// The clip rectangle cannot reach beyond 32,767.
TEST_F(ImageDrawing, ADestinationMayBeWiderThanTheClipRectangle)
{
    std::vector<Pixel> row(40000, kBlank);
    const MMPixmap canvas = {40000, 1, 160000, 0, row.data(), 0};
    const MMFixedRegion source = {0, 0, fx(4), fx(1)}, rect = {fx(32760), 0, fx(32764), fx(1)};
    context.drawImage(&image, &source, &canvas, &rect, 0);
    EXPECT_EQ(context.clipRight, 32767);
    EXPECT_EQ(context.clipBottom, 1);
    for (int i = -1; i <= 4; ++i)
        EXPECT_EQ(row[static_cast<size_t>(32760 + i)], i >= 0 && i < 4 ? texel(i, 0) : kBlank);
}

TEST_F(ImageDrawing, AnAngleTurnsAboutTheTopLeftCornerAgainstTheClock)
{
    const MMFixedRegion source = {0, 0, fx(4), fx(3)};
    const MMFixedRegion rect = {fx(10), fx(10), fx(14), fx(13)};
    const MMPixmap canvas = context.target;
    context.drawImage(&image, &source, &canvas, &rect, kDegrees90);
    // What lay i to the right now lies i above, and what lay j below, j to the right.
    expect([](int x, int y) {
        return x >= 10 && x < 13 && y >= 6 && y < 10 ? texel(9 - y, x - 10) : 0;
    });
}

} // namespace
