// SPDX-License-Identifier: MIT
// Drawing images through the transform, and parts of images scaled and turned into a pixmap.
#include "graphics2d/ImageReduction.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/Picture.h"
#include "tests/support/UserUnits.h"

#include <random>

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
    context.drawImage(&image, 0, 0, 4_fx, 3_fx, 0);
    expect([](int x, int y) { return x < 4 && y < 3 ? texel(x, y) : 0; });
    EXPECT_EQ(context.currentPaint.paintType, kPaintXOR) << "restored";
    EXPECT_EQ(context.currentPaint.paintOpacity, 255) << "left behind";
}

TEST_F(ImageDrawing, TheRectangleSelectsOrCarriesTheImage)
{
    // Without the offset the image stays at the origin: the rectangle shows its outermost texels.
    context.drawImage(&image, 2_fx, 2_fx, 6_fx, 4_fx, 0);
    expect([](int x, int y) {
        return x >= 2 && x < 8 && y >= 2 && y < 6 ? texel(std::min(x, 3), std::min(y, 2)) : 0;
    });
    std::fill(pixels.begin(), pixels.end(), kBlank);
    context.transform.translate(5_fx, 1_fx);
    context.drawImage(&image, 2_fx, 2_fx, 4_fx, 3_fx, 1);
    expect(
        [](int x, int y) { return x >= 7 && x < 11 && y >= 3 && y < 6 ? texel(x - 7, y - 3) : 0; });
}

TEST_F(ImageDrawing, AlphaCountsWhenTheImageSaysSo)
{
    // An opaque paint copies translucent texels; with the flag they are blended over the pixel to
    // the right of each: weight 0 leaves it.
    for (Pixel& t : texels)
        t &= 0x00FFFFFF;
    context.drawImage(&image, 0, 0, 4_fx, 3_fx, 0);
    EXPECT_EQ(at(0, 0), texels[0]);
    image.pixmapExtra = 0x101;
    context.drawImage(&image, 0, 0, 4_fx, 3_fx, 0);
    EXPECT_EQ(at(0, 0), texels[1]);
    EXPECT_EQ(at(3, 0), kBlank);
}

TEST_F(ImageDrawing, APartIsScaledIntoTheDestination)
{
    const MMFixedRegion source = {1_fx, 1_fx, 3_fx, 3_fx};
    const MMFixedRegion rect = {10_fx, 20_fx, 14_fx, 24_fx};
    const MMPixmap canvas = context.target;
    context.clipLeft = 30;
    context.transform.translate(9_fx, 0);
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
    const MMFixedRegion source = {0, 0, 4_fx, 1_fx}, rect = {32760_fx, 0, 32764_fx, 1_fx};
    context.drawImage(&image, &source, &canvas, &rect, 0);
    EXPECT_EQ(context.clipRight, 32767);
    EXPECT_EQ(context.clipBottom, 1);
    for (int i = -1; i <= 4; ++i)
        EXPECT_EQ(row[static_cast<size_t>(32760 + i)], i >= 0 && i < 4 ? texel(i, 0) : kBlank);
}

TEST_F(ImageDrawing, AnAngleTurnsAboutTheTopLeftCornerAgainstTheClock)
{
    const MMFixedRegion source = {0, 0, 4_fx, 3_fx};
    const MMFixedRegion rect = {10_fx, 10_fx, 14_fx, 13_fx};
    const MMPixmap canvas = context.target;
    context.drawImage(&image, &source, &canvas, &rect, kDegrees90);
    // What lay i to the right now lies i above, and what lay j below, j to the right.
    expect([](int x, int y) {
        return x >= 10 && x < 13 && y >= 6 && y < 10 ? texel(9 - y, x - 10) : 0;
    });
}

// A target, a destination and an image may each be the context's own record.
TEST_F(ImageDrawing, RecordsInsideTheContextAreReadBeforeTheyChange)
{
    std::vector<Pixel> copy(16, 0);
    const MMPixmap destination = {4, 4, 16, 0, copy.data(), 0};
    const MMFixedRegion rect = {0, 0, 4_fx, 3_fx};
    const MMPixmap canvas = context.target;
    context.target = image;
    context.currentPaint.patternHasAlpha = 0;
    context.drawImage(&context.target, &rect, &destination, &rect, 0);
    for (size_t i = 0; i < 12; ++i)
        EXPECT_EQ(copy[i], texels[i]) << i;
    EXPECT_EQ(copy[12], 0u);

    context.target = canvas;
    context.clipRight = context.clipBottom = size;
    context.currentPaint.patternImage = image;
    context.drawImage(&context.currentPaint.patternImage, 0, 0, 4_fx, 3_fx, 0);
    expect([](int x, int y) { return x < 4 && y < 3 ? texel(x, y) : 0; });
}

TEST_F(ImageDrawing, UnknownFiltersDrawNothing)
{
    context.patternFilter = 3;
    for (const uint8_t refined : {0, 1}) {
        context.refined = refined;
        context.drawImage(&image, 0, 0, 4_fx, 3_fx, 0);
        EXPECT_TRUE(blank());
    }
}

// --- By the refined rules ------------------------------------------------------------------------

struct RefinedImage : ImageDrawing {
    std::mt19937 random{9};
    std::vector<Pixel> large;

    RefinedImage()
    {
        context.refined = 1;
        context.patternFilter = kFilterBilinear;
    }
    MMPixmap randomImage(int width, int height, bool hasAlpha)
    {
        large.clear();
        for (int i = 0; i < width * height; ++i)
            large.push_back(static_cast<Pixel>(random()) | (hasAlpha ? 0 : 0xFF000000));
        return {static_cast<uint16_t>(width),
                static_cast<uint16_t>(height),
                0,
                0,
                large.data(),
                hasAlpha};
    }
    // The mean of a block of side by side texels, weighted by their alpha, times that.
    double mean(int width, int side, int x, int y, int channel) const
    {
        double sum = 0;
        for (int i = 0; i < side * side; ++i) {
            const int at = (y * side + i / side) * width + x * side + i % side;
            const Pixel p = large[static_cast<size_t>(at)];
            sum += (channel < 3 ? (p >> (8 * channel) & 0xFF) * ((p >> 24) / 255.0) : p >> 24);
        }
        return sum / (side * side);
    }
};

TEST_F(RefinedImage, IsCopiedAtItsOwnSize)
{
    for (const MMPatternFilter filter : {kFilterNearest, kFilterBilinear}) {
        context.patternFilter = filter;
        fill(kBlank);
        const MMPixmap copied = randomImage(20, 20, false);
        context.transform = kIdentityMatrix;
        context.transform.translate(3_fx, 5_fx);
        context.drawImage(&copied, 0, 0, 20_fx, 20_fx, 0);
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                const bool inside = x >= 3 && x < 23 && y >= 5 && y < 25;
                ASSERT_EQ(at(x, y), inside ? large[(y - 5) * 20 + x - 3] : kBlank) << x << ',' << y;
            }
    }
}

TEST_F(RefinedImage, BelowOneHalfIsTheMeanOfItsTexels)
{
    for (int round = 0; round < 40; ++round) {
        const bool hasAlpha = round % 2 != 0, isPart = round % 4 >= 2;
        const int side = 2 << round % 3;
        const MMPixmap reduced = randomImage(8 * side, 8 * side, hasAlpha);
        fill(hasAlpha ? 0 : kBlank);
        const MMPixmap canvas = context.target;
        if (isPart) {
            const MMFixedRegion source = {0, 0, fx(8 * side), fx(8 * side)};
            const MMFixedRegion rect = {0, 0, 8_fx, 8_fx};
            context.currentPaint.patternHasAlpha = hasAlpha;
            context.drawImage(&reduced, &source, &canvas, &rect, 0);
        } else {
            context.transform = {0x10000 / side, 0, 0, 0x10000 / side, 0, 0};
            context.drawImage(&reduced, 0, 0, fx(8 * side), fx(8 * side), 0);
        }
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                for (int k = 0; k < 4; ++k)
                    ASSERT_NEAR(at(x, y) >> (8 * k) & 0xFF, mean(8 * side, side, x, y, k),
                                hasAlpha ? 3 : 1.5)
                        << "round " << round << " at " << x << ',' << y;
        EXPECT_EQ(context.currentPaint.patternImage.pixels, large.data()) << "left behind";
        EXPECT_EQ(context.currentPaint.patternImage.width, 8 * side);
    }
}

TEST_F(RefinedImage, IsReducedInTheCallersMemoryForAPattern)
{
    MMPixmap reduced = randomImage(37, 21, false);
    Matrix2D transform = {0x4000, 0, 0, 0x3000, 2_fx, 0};
    std::vector<Pixel> room(reducedImageRoom(reduced, transform));
    ASSERT_EQ(room.size(), 19u * 11);
    reduceImage(reduced, transform, room.data());
    EXPECT_EQ(reduced.width, 10); // 19 by 11, and halved again
    EXPECT_EQ(reduced.height, 6);
    EXPECT_EQ(transform.a, 0x10000);
    EXPECT_EQ(transform.d, 0xC000);
    EXPECT_EQ(transform.e, 2_fx);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(room[0] >> (8 * k) & 0xFF, mean(37, 4, 0, 0, k), 1);
    EXPECT_EQ(reducedImageRoom(reduced, transform), 0u);
    const MMPixmap before = reduced;
    reduceImage(reduced, transform, room.data());
    EXPECT_EQ(reduced.width, before.width);
}

// An image of one column is halved along it; means by alpha are rounded to nearest.
TEST_F(RefinedImage, IsHalvedAsLongAsItsLongerSideAllows)
{
    std::vector<Pixel> texels(64, 0x40000002);
    for (size_t i = 1; i < 64; i += 2)
        texels[i] = 0x80000003;
    MMPixmap narrow = {1, 64, 4, 0, texels.data(), 1};
    Matrix2D transform = {0x1000, 0, 0, 0x1000, 0, 0};
    std::vector<Pixel> room(reducedImageRoom(narrow, transform));
    ASSERT_EQ(room.size(), 32u);
    reduceImage(narrow, transform, room.data());
    EXPECT_EQ(narrow.width, 1);
    EXPECT_EQ(narrow.height, 4);
    EXPECT_EQ(room[0], 0x60000003u); // (2 * 0x40 + 3 * 0x80) / 0xC0 is 2.67
}

TEST_F(RefinedImage, IsDrawnFromItselfWithoutMemory)
{
    const MMPixmap reduced = randomImage(400, 400, false);
    FailingHeap heap;
    heap.failFrom(1);
    context.transform = {0x1000, 0, 0, 0x1000, 0, 0};
    context.drawImage(&reduced, 0, 0, 400_fx, 400_fx, 0);
    heap.failAt(0);
    EXPECT_EQ(context.outOfMemory, 0);
    // The centre of the first pixel is the corner of texels 7 and 8.
    const Pixel corners[] = {large[7 * 400 + 7], large[7 * 400 + 8], large[8 * 400 + 7],
                             large[8 * 400 + 8]};
    double sum = 0;
    for (Pixel p : corners)
        sum += p & 0xFF;
    EXPECT_NEAR(at(0, 0) & 0xFF, sum / 4, 1.5);
}

} // namespace
