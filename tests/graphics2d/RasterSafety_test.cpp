// What the rasterisers do at their limits: clips, hostile coordinates, too little memory, many
// points.
#include "graphics2d/Rasteriser.h"
#include "tests/graphics2d/RasterCanvas.h"
#include "tests/support/FailingHeap.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace rastertest;

enum class Entry { Any, Monotone, Complex };

void fill(MMContext2D& context, const Polygon& polygon, Entry entry)
{
    const uint32_t count = static_cast<uint32_t>(polygon.size());
    if (entry == Entry::Any)
        fillPolygon(context, polygon.data(), count, kFillNonZero);
    else if (entry == Entry::Monotone)
        fillMonotonePolygon(context, polygon.data(), count);
    else
        fillComplexPolygon(context, polygon.data(), count, kFillNonZero);
}

TEST(RasterThin, OneSpanWithTheOpacityOfItsHeight)
{
    struct Case {
        double x0, y0, x1, y1;
        int row, first, end, value; // value: white on black
    };
    // The opacity is 255 * height >> 8, and one more from 128 to 254.
    for (const Case& c :
         {Case{10, 20, 30, 20.25, 20, 10, 30, 63}, Case{10, 19.5, 30, 20.5, 20, 10, 30, 255},
          Case{10, 19.75, 30, 20.25, 20, 10, 30, 127}, Case{9.5, 20, 29.5, 20.5, 20, 10, 30, 127},
          Case{10.25, 20, 30.49, 20.75, 0, 0, 0, 0}}) {
        Canvas canvas;
        canvas.fill(model::rectangle(c.x0, c.y0, c.x1, c.y1));
        if (c.end == 0) continue; // two rows: not thin, covered by the area tests
        for (int y = 18; y < 23; ++y)
            for (int x = 8; x < 33; ++x)
                ASSERT_EQ(canvas.at(x, y), y == c.row && c.first <= x && x < c.end ? c.value : 0)
                    << c.x0 << ", " << c.y0 << " at " << x << ", " << y;
        EXPECT_EQ(canvas.context.currentPaint.paintOpacity, 255);
    }
}

TEST(RasterClip, DrawsTheSamePixelsInsideAndNothingOutside)
{
    struct Clip {
        int16_t left, top, right, bottom;
    };
    constexpr int kInset = 8; // the target lies this far inside the pixels
    constexpr int kRight = kWidth - 2 * kInset, kBottom = kHeight - 2 * kInset;
    std::vector<Shape> list = shapes();
    list.push_back({"thin", model::rectangle(-3, 20.1, 200, 20.4), 0, 0});
    for (const Shape& shape : list) {
        for (uint8_t antiAlias : {0, 1}) {
            Canvas whole;
            whole.context.antiAlias = antiAlias;
            whole.fill(shape.polygon);
            for (const Clip& clip :
                 {Clip{40, 30, 90, 80}, Clip{61, 20, 62, 100}, Clip{0, 59, 140, 60},
                  Clip{-300, -300, 3000, 3000}, Clip{50, 50, 40, 40}}) {
                Canvas canvas;
                MMContext2D& context = canvas.context;
                context.target.pixels += kInset * kWidth + kInset;
                context.target.width = kRight;
                context.target.height = kBottom;
                context.clipLeft = clip.left;
                context.clipTop = clip.top;
                context.clipRight = clip.right;
                context.clipBottom = clip.bottom;
                context.antiAlias = antiAlias;
                canvas.fill(shape.polygon);
                for (int y = -kInset; y < kBottom + kInset; ++y) {
                    for (int x = -kInset; x < kRight + kInset; ++x) {
                        const bool in = x >= std::max<int>(clip.left, 0) &&
                                        x < std::min<int>(clip.right, kRight) &&
                                        y >= std::max<int>(clip.top, 0) &&
                                        y < std::min<int>(clip.bottom, kBottom);
                        const int expected = in ? whole.at(x, y) : 0;
                        // A run that starts at the clip may round its step elsewhere.
                        ASSERT_NEAR(canvas.at(x + kInset, y + kInset), expected,
                                    in && expected % 255 != 0 ? antiAlias : 0)
                            << shape.name << " at " << x << ", " << y;
                    }
                }
            }
        }
    }
}

TEST(RasterClip, EmptyTargetsAndSuppressedDrawingOnlySetTheBounds)
{
    const Polygon polygon = model::rectangle(10, 10, 20, 30);
    for (int n = 0; n < 3; ++n) {
        Canvas canvas;
        if (n == 0) canvas.context.target.pixels = nullptr;
        if (n == 1) canvas.context.target.width = canvas.context.target.height = 0;
        if (n == 2) canvas.context.drawSuppressed = 1;
        for (Entry entry : {Entry::Monotone, Entry::Complex}) {
            fill(canvas.context, polygon, entry);
            EXPECT_EQ(canvas.context.boundsMaxY, 30 * kFixedOne);
        }
        EXPECT_EQ(std::count(canvas.pixels.begin(), canvas.pixels.end(), 0xFF000000u),
                  kWidth * kHeight);
    }
}

TEST(RasterHostile, AnyCoordinatesStayInsideTheTarget)
{
    constexpr Fixed kLeast = -0x7FFFFFFF - 1, kMost = 0x7FFFFFFF, kInside = 50 * kFixedOne;
    constexpr Fixed kValues[] = {
        kLeast, kLeast + 1, kMost,  kMost - 0x7FFF, kMost - 0x8000, 0x40000000, -0x40000000,
        0,      1,          0x8000, 0x10000,        0x7FFF,         kInside,    kInside + 17};
    const auto any = [&](std::mt19937& random) { return kValues[random() % std::size(kValues)]; };
    std::mt19937 random(1);
    for (int n = 0; n < 6000; ++n) {
        Polygon polygon;
        const uint32_t count = 1 + random() % 12;
        for (uint32_t i = 0; i < count; ++i) {
            MMPoint2D p{any(random), any(random)};
            if (n % 3 == 1) p.x = static_cast<Fixed>(random());
            if (n % 3 == 2) p.y = static_cast<Fixed>(random());
            polygon.push_back(p);
        }
        Canvas canvas; // overruns are the sanitizer's to find
        canvas.context.antiAlias = n & 1;
        for (Entry entry : {Entry::Any, Entry::Monotone, Entry::Complex})
            fill(canvas.context, polygon, entry);
    }
}

TEST(RasterHostile, LongEdgesDoNotWrap)
{
    constexpr Fixed kFar = 0x7FFFFFFF;
    const Polygon frame = {{-kFar, -kFar}, {kFar, -kFar}, {kFar, kFar}, {-kFar, kFar}};
    for (uint8_t antiAlias : {0, 1}) {
        for (Entry entry : {Entry::Monotone, Entry::Complex}) {
            Canvas canvas;
            canvas.context.antiAlias = antiAlias;
            fill(canvas.context, frame, entry);
            EXPECT_EQ(std::count(canvas.pixels.begin(), canvas.pixels.end(), 0xFFFFFFFFu),
                      kWidth * kHeight);
        }
    }
}

TEST(RasterMemory, AFailedAllocationSetsTheBitAndLeaksNothing)
{
    const Polygon shape =
        model::bridged({model::random(7, 60, 110), model::burst(64, 64, 60, 59, 300)});
    const Polygon round = model::circle(64, 64, 60, 600);
    for (const Polygon& polygon : {shape, round}) {
        for (uint8_t antiAlias : {0, 1}) {
            Canvas whole;
            whole.context.antiAlias = antiAlias;
            fill(whole.context, polygon, Entry::Any);
            ASSERT_EQ(whole.context.outOfMemory, 0);
            const uint32_t calls = failEachAllocation([&] {
                Canvas canvas; // its pixels come from a heap that does not fail
                canvas.context.antiAlias = antiAlias;
                fill(canvas.context, polygon, Entry::Any);
                EXPECT_TRUE(canvas.context.outOfMemory != 0 || canvas.pixels == whole.pixels);
            });
            EXPECT_GE(calls, 2u);
        }
    }
}

TEST(RasterMany, SeventyThousandPointsAreDrawnAndNotWrapped)
{
    Polygon fine = model::circle(64, 64, 50, 70000);
    const Polygon coarse = model::circle(64, 64, 50, 2000);
    for (Entry entry : {Entry::Monotone, Entry::Complex}) {
        Canvas many, few;
        fill(many.context, fine, entry);
        fill(few.context, coarse, entry);
        for (int i = 0; i < kWidth * kHeight; ++i)
            ASSERT_NEAR(many.at(i % kWidth, i / kWidth), few.at(i % kWidth, i / kWidth), 2);
    }
}

// Edge state as a rasteriser leaves it: x at the top and at the bottom of a row, whole or in part.
TEST(SmoothEdges, DrawsTheTrapezoidBetweenTheEdges)
{
    struct Case {
        double leftTop, leftBottom, rightTop, rightBottom;
        uint8_t alpha;
        std::array<int, 8> expected;
    };
    const Case cases[] = {
        {2, 2, 5, 5, 255, {0, 0, 255, 255, 255, 0, 0, 0}},
        {1.25, 1.75, 4.5, 4.5, 255, {0, 128, 255, 255, 128, 0, 0, 0}},
        // A ramp over two columns: 1/8 and 7/8 of them lie right of it.
        {1.5, 2.5, 6, 6, 255, {0, 32, 223, 255, 255, 255, 0, 0}},
        {6, 6, 2.5, 1.5, 255, {0, 0, 0, 0, 0, 0, 0, 0}}, // right of left: nothing
        {1, 4, 4, 7, 255, {0, 43, 128, 213, 213, 128, 43, 0}},
        {1, 3, 2, 4, 255, {0, 64, 128, 64, 0, 0, 0, 0}}, // both ramps in one column
        {2, 2, 5, 5, 64, {0, 0, 64, 64, 64, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        Canvas canvas;
        MMContext2D& context = canvas.context;
        context.spanRow = 0;
        context.spanPixels = canvas.pixels.data();
        context.leftPreviousX = model::toFixed(c.leftTop);
        context.spanStart = model::toFixed(c.leftBottom);
        context.rightPreviousX = model::toFixed(c.rightTop);
        context.spanEnd = model::toFixed(c.rightBottom);
        context.leftEdgeAlpha = context.rightEdgeAlpha = c.alpha;
        const auto slope = [](double a, double b) {
            return a == b ? 0 : model::toFixed(1 / std::abs(a - b));
        };
        context.leftCoverageSlope = slope(c.leftTop, c.leftBottom);
        context.rightCoverageSlope = slope(c.rightTop, c.rightBottom);
        context.smoothEdges();
        for (int x = 0; x < 8; ++x)
            EXPECT_NEAR(canvas.at(x, 0), c.expected[std::size_t(x)], 1) << c.leftTop << " at " << x;
        EXPECT_EQ(context.spanStart, model::toFixed(c.leftBottom));
        EXPECT_EQ(context.spanEnd, model::toFixed(c.rightBottom));
    }
}

} // namespace
