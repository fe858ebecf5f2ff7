// SPDX-License-Identifier: MIT
// One anti-aliased row between two edges, and the edge state that it is drawn from.
#include "tests/graphics2d/raster/RasterShapes.h"
#include "tests/support/Picture.h"

#include <gtest/gtest.h>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using namespace model;

// Edges as they pass a row: x at its top and at its bottom.
TEST(SmoothEdges, DrawsTheTrapezoidBetweenTheEdges)
{
    const struct {
        double leftTop, leftBottom, rightTop, rightBottom;
        uint8_t leftAlpha, rightAlpha;
        int expected[8];
    } cases[] = {
        {1, 4, 4, 7, 255, 255, {0, 43, 128, 213, 213, 128, 43, 0}},
        {6, 6, 2.5, 1.5, 255, 255, {0, 0, 0, 0, 0, 0, 0, 0}},  // right of left: nothing
        {2, 4, 6, 6, 64, 64, {0, 0, 16, 48, 64, 64, 0, 0}},    // a quarter of a row
        {1, 3, 5, 7, 128, 64, {0, 32, 96, 64, 64, 48, 16, 0}}, // each edge by its own height
        {1, 3, 5, 7, 64, 128, {0, 16, 48, 64, 64, 96, 32, 0}},
        {1, 3, 2, 4, 255, 128, {0, 64, 64, 32, 0, 0, 0, 0}}, // in common: the lesser one
    };
    for (const auto& c : cases) {
        const auto slope = [](uint8_t alpha, double from, double to) {
            return from == to ? 0 : toFixed(alpha / 255.0 / std::abs(from - to)); // in a whole row
        };
        Picture picture;
        MMContext2D& context = picture.context;
        context.spanRow = 0;
        context.spanPixels = context.target.pixels;
        context.leftPreviousX = toFixed(c.leftTop);
        context.spanStart = toFixed(c.leftBottom);
        context.rightPreviousX = toFixed(c.rightTop);
        context.spanEnd = toFixed(c.rightBottom);
        context.leftEdgeAlpha = c.leftAlpha;
        context.rightEdgeAlpha = c.rightAlpha;
        context.leftCoverageSlope = slope(c.leftAlpha, c.leftTop, c.leftBottom);
        context.rightCoverageSlope = slope(c.rightAlpha, c.rightTop, c.rightBottom);
        context.smoothEdges();
        for (int x = 0; x < 8; ++x)
            EXPECT_NEAR(picture.coverage(x, 0), c.expected[x], 1)
                << c.leftTop << " to " << c.leftBottom << " at " << x;
        EXPECT_EQ(context.spanStart, toFixed(c.leftBottom));
        EXPECT_EQ(context.spanEnd, toFixed(c.rightBottom));
    }
}

// Every row between two straight edges leaves behind what it can be drawn from again.
TEST(SmoothEdges, RowsOfMonotonePolygonsLeaveTheirEdgeState)
{
    std::mt19937 random(31);
    for (int n = 0; n < 400; ++n) {
        const auto x = [&] { return 2 + (random() % 6000) * 0.01; };
        const double left[] = {x(), x()}, right[] = {x(), x()};
        Polygon polygon =
            points({{left[0], 1.2}, {right[0], 3.7}, {right[1], 58.9}, {left[1], 60.1}});
        const int row = 5 + int(random() % 50);
        Picture filled;
        MMContext2D& context = filled.context;
        context.clipTop = int16_t(row);
        context.clipBottom = int16_t(row + 1);
        context.rasterMonotonePolygon(polygon.data(), 4);
        const double height = right[1] - right[0];
        const double xs[] = {left[0] + (left[1] - left[0]) * (row - 0.5 - 1.2) / 58.9 + 0.5,
                             right[0] + height * (row - 0.5 - 3.7) / 55.2 + 0.5};
        SCOPED_TRACE(testing::Message() << left[0] << ", " << right[0] << ", " << right[1] << ", "
                                        << left[1] << " in row " << row);
        const double slopes[] = {(left[1] - left[0]) / 58.9, height / 55.2};
        if ((xs[0] < xs[1]) != (xs[0] + slopes[0] < xs[1] + slopes[1])) continue; // they cross
        const int first = xs[0] > xs[1];
        EXPECT_NEAR(toDouble(context.leftPreviousX), xs[first], 0.01);
        EXPECT_NEAR(toDouble(context.rightPreviousX), xs[1 - first], 0.01);
        EXPECT_NEAR(toDouble(context.leftSlope), slopes[first], 0.001);
        EXPECT_NEAR(toDouble(context.rightSlope), slopes[1 - first], 0.001);
        EXPECT_NEAR(toDouble(context.spanStart), xs[first] + slopes[first], 0.01);
        EXPECT_NEAR(toDouble(context.spanEnd), xs[1 - first] + slopes[1 - first], 0.01);
        EXPECT_EQ(context.leftEdgeAlpha, 255);
        EXPECT_EQ(context.rightEdgeAlpha, 255);

        Picture again;
        again.context.clipTop = context.clipTop;
        again.context.clipBottom = context.clipBottom;
        again.context.spanRow = row;
        again.context.spanPixels = again.context.target.pixels + row * again.size;
        again.context.leftPreviousX = context.leftPreviousX;
        again.context.rightPreviousX = context.rightPreviousX;
        again.context.spanStart = context.spanStart;
        again.context.spanEnd = context.spanEnd;
        again.context.leftCoverageSlope = context.leftCoverageSlope;
        again.context.rightCoverageSlope = context.rightCoverageSlope;
        again.context.leftEdgeAlpha = again.context.rightEdgeAlpha = 255;
        again.context.smoothEdges();
        ASSERT_TRUE(again.pixels == filled.pixels);
    }
}

// What rounds to a weight of 0 is not drawn: the filler would take the right-hand neighbour in.
TEST(SmoothEdges, PixelsWithoutCoverageKeepTheirColour)
{
    std::mt19937 random(32);
    const Pixel colours[] = {0xFF2040C0, 0xFF2040C0};
    const Fixed offsets[] = {0, kFixedOne};
    for (int n = 0; n < 2000; ++n) {
        Polygon polygon;
        for (int i = 0; i < 3 + n % 3; ++i)
            add(polygon, (random() % 64000) * 0.001, (random() % 64000) * 0.001);
        const auto count = uint16_t(polygon.size());
        Picture solid, gradient;
        solid.context.rasterPolygon(polygon.data(), count);
        for (Pixel& p : gradient.pixels) // stripes
            p = (&p - gradient.pixels.data()) % 2 != 0 ? 0xFF00FF00 : 0xFFFF0000;
        const auto before = gradient.pixels;
        MMPaint& paint = gradient.context.currentPaint;
        paint.paintType = kPaintLinearGradient;
        paint.gradientStopCount = 2;
        paint.gradientStopColors = colours;
        paint.gradientStopOffsets = offsets;
        paint.gradientStepX = 700;
        gradient.context.rasterPolygon(polygon.data(), count);
        for (size_t i = 0; i < before.size(); ++i)
            ASSERT_TRUE(solid.pixels[i] != Picture::kBlank || gradient.pixels[i] == before[i])
                << "pixel " << i << " of polygon " << n << " from " << polygon[0].x << ", "
                << polygon[0].y << " on";
        std::fill(gradient.pixels.begin(), gradient.pixels.end(), Picture::kBlank); // the guard
    }
}

} // namespace
