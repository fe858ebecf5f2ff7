// SPDX-License-Identifier: MIT
// Drawing with numbers from the ends of their ranges: it ends, and only inside the target. What it
// would read elsewhere is the sanitizers' to find. The fuzzers go further and take longer.
#include "graphics2d/PaintSetup.h"
#include "tests/support/Picture.h"

#include <climits>
#include <random>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

TEST(HostileInput, DrawsInsideTheTargetAndEnds)
{
    std::mt19937 random(3);
    const auto below = [&](uint32_t limit) { return static_cast<uint8_t>(random() % limit); };
    const auto number = [&]() -> Fixed {
        const Fixed odd[] = {INT_MIN,  INT_MIN + 1, -0x40000000,      -0x10000, -1,
                             0,        1,           0x7FFF,           0x8000,   0x10000,
                             50 << 16, 0x40000000,  INT_MAX - 0x7FFF, INT_MAX};
        return below(8) == 0 ? static_cast<Fixed>(random()) : odd[random() % std::size(odd)];
    };
    const auto point = [&]() -> MMPoint2D { return {number(), number()}; };
    const auto matrix = [&]() -> Matrix2D {
        return {number(), number(), number(), number(), number(), number()};
    };
    const Pixel colours[] = {0xFF000000, 0x80FF8000, 0xFFFFFFFF};
    Pixel rampColours[gradientRampRoom(3)], texels[4] = {0xFF123456, 0x80808080};
    Fixed rampOffsets[gradientRampRoom(3)];
    const GradientRamp ramp = {rampColours, rampOffsets};
    MMPoint2D triangle[] = {{0, 0}, {64 << 16, 0}, {64 << 16, 64 << 16}};
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE(round);
        Picture picture;
        MMContext2D& c = picture.context;
        c.antiAlias = below(2);
        c.refined = below(2);
        c.joinStyle = below(4);
        c.capStyle = below(4);
        c.patternFilter = below(3);
        c.strokeHalfWidth = number();
        c.miterLimit = number();
        if (below(2) != 0) c.transform = matrix();

        std::vector<MMPoint2D> points(1 + below(12));
        for (MMPoint2D& p : points)
            p = point();
        const uint16_t count = static_cast<uint16_t>(points.size());
        MMLinkPath record = {points.data(), count};
        c.drawPolyline(&record, 1, below(2));
        c.drawCircularArc(&points[0], number(), number(), number(), below(2), below(2));
        c.drawEllipticalRect(number(), number(), number(), number(), number(), number());
        c.rasterMonotonePolygon(points.data(), count);
        c.rasterComplexPolygon(points.data(), count);

        const Fixed offsets[] = {number(), number(), number()};
        const GradientStops stops = {colours, offsets, 3};
        const MMPixmap image = {below(3), 2, 8, 0, texels, below(2)}, target = c.target;
        setLinearGradient(c.currentPaint, point(), point(), matrix(), stops, ramp, c.refined != 0);
        c.rasterPolygon(triangle, 3);
        setRadialGradient(c.currentPaint, point(), number(), matrix(), stops, ramp, c.refined != 0);
        c.rasterPolygon(triangle, 3);
        setPattern(c.currentPaint, image, matrix(), MMPatternFilter(c.patternFilter),
                   c.refined != 0);
        c.rasterPolygon(triangle, 3);
        c.drawImage(&image, number(), number(), number(), number(), below(2));
        const MMFixedRegion from = {0, 0, number(), number()};
        const MMFixedRegion to = {number(), number(), number(), number()};
        c.drawImage(&image, &from, &target, &to, number());
        EXPECT_EQ(c.outOfMemory, 0);
    }
}

TEST(HostileInput, NothingIsDrawnWithoutExtent)
{
    Picture picture;
    MMContext2D& context = picture.context;
    MMPoint2D centre = {32 << 16, 32 << 16};
    for (Fixed radius : {0, -kFixedOne, INT_MIN})
        context.drawCircularArc(&centre, radius, 0, kDegrees90, 1, 0);
    for (Fixed halfWidth : {0, -kFixedOne, INT_MIN}) {
        context.strokeHalfWidth = halfWidth;
        MMLinkPath record = {&centre, 1};
        context.drawPolyline(&record, 1, 0);
    }
    EXPECT_TRUE(picture.emptyBounds());
    EXPECT_TRUE(picture.blank());
}

} // namespace
